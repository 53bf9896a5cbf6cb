#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>

// The reply envelope of the data service: {"state", "msg", "extend", "data"}.
struct NtResponse
{
    int spare = 0;
    QString spareText1;
    QString spareText2;
    QString spareText3;
    QString spareText4;
    int state = 0;
    QString msg;
    QJsonValue extend;
    QJsonValue data;
};

// Checks the envelope and hands the payload on; never looks into the payload.
namespace TFJSP {

// True for every well-formed envelope, whatever its state says.
bool parseResponse(const QString &json, NtResponse &out);
bool hasAllKeys(const QStringList &keys, const QJsonObject &object);
// The navigation rows: data as an array, false when it is empty.
bool parseNavTree(const QString &json, QJsonArray &out);

} // namespace TFJSP
