#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QPair>
#include <QString>

namespace SubjectService {

// A request body of either endpoint, read and checked for types. Keys that are
// not known here are the data-source parameters of the view.
struct RequestBody
{
    bool hasFlag = false;
    int flag = 0;
    bool hasViewId = false;
    qint64 viewId = 0;
    bool hasObjId = false;
    qint64 objId = 0;
    QString objName;
    bool hasPaging = false;
    int page = 1;
    int size = 0;
    QString filter;
    QJsonObject filterParams;
    QList<QPair<QString, int>> order;   // field, 1 ascending or -1 descending
    QJsonObject parameters;             // every other top-level key

    static bool read(const QByteArray &json, RequestBody *body, QString *error);
};

} // namespace SubjectService
