#include "filterwidget/tfremotelist.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

QString textOf(const QJsonObject &element, const QString &key, const QString &fallback)
{
    const QJsonValue value = element.contains(key) ? element.value(key) : element.value(fallback);
    return value.toVariant().toString();
}

} // namespace

QMap<QString, QString> remoteListEntries(const QByteArray &reply)
{
    QMap<QString, QString> entries;
    const QJsonArray rows = QJsonDocument::fromJson(reply).object().value(QLatin1String("data")).toArray();
    for (const QJsonValue &row : rows) {
        const QJsonObject element = row.toObject();
        entries.insert(textOf(element, QStringLiteral("NodeNameFieldName"), QStringLiteral("NAME")),
                       textOf(element, QStringLiteral("NodeDataKeyFieldName"), QStringLiteral("VALUE")));
    }
    return entries;
}
