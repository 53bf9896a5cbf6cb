#include "tfobjectviewjsontable.h"

#include <QJsonArray>
#include <QJsonObject>

TFObjectViewJsonTable::TFObjectViewJsonTable(QObject* parent)
    : TFBaseJsonTable(parent)
{
}

TFObjectViewJsonTable::~TFObjectViewJsonTable() = default;

void TFObjectViewJsonTable::initWith(const QJsonValue& value)
{
    // An empty array (or no array at all) says nothing about the name, so
    // the name stays as it was.
    const QJsonArray array = value.toArray();
    if (array.isEmpty())
        return;
    m_name = array.first().toObject().value(QLatin1String("obj_vw_name")).toString();
}
