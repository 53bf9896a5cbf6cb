#include "net/tfjsp.h"

#include <QDebug>
#include <QJsonDocument>
#include <QJsonParseError>

namespace TFJSP {

bool parseResponse(const QString &json, NtResponse &out)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json.toUtf8(), &error);
    if (error.error != QJsonParseError::NoError) {
        qWarning() << "respone is not json obj:" << error.errorString();
        return false;
    }
    // An array at the top level gives an empty object and fails the key check.
    const QJsonObject object = document.object();
    if (!hasAllKeys({QStringLiteral("state"), QStringLiteral("msg"), QStringLiteral("extend"),
                     QStringLiteral("data")}, object))
        return false;

    out.state = object.value(QStringLiteral("state")).toInt();
    out.msg = object.value(QStringLiteral("msg")).toString();
    out.extend = object.value(QStringLiteral("extend"));
    out.data = object.value(QStringLiteral("data"));
    return true;
}

bool hasAllKeys(const QStringList &keys, const QJsonObject &object)
{
    for (const QString &key : keys) {
        if (!object.contains(key)) {
            qDebug() << "can't found the key:" << key;
            return false;
        }
    }
    return true;
}

bool parseNavTree(const QString &json, QJsonArray &out)
{
    NtResponse response;
    if (!parseResponse(json, response))
        return false;
    out = response.data.toArray();
    if (out.isEmpty()) {
        qDebug() << "parseSubjectTree:array is empty";
        return false;
    }
    return true;
}

} // namespace TFJSP
