#pragma once

#include "jsonparser/tffilterjsontable.h"

#include <QJsonValue>
#include <QString>

// One filter row as configuration writes it, e.g.
// R"({"ClassName":"SimpleYear","FieldName":"YEAR"})".
inline TFTableModelData::FilterData filterRow(const QString &json)
{
    TFFilterJsonTable table;
    table.initWith(QJsonValue(QStringLiteral("[%1]").arg(json)));
    return table.filters().value(0);
}
