#pragma once

#include <QList>
#include <QPair>
#include <QString>

class QUrl;

// What a page URL says: view://<host with "subjectpage">?pnodecode=<int>&
// nodecode=<text>&objvwid=<text>&title=<text>. The whole query is lowered
// before it is read, keys and values alike, so keys are case-insensitive and
// a title reaches the screen in small letters.
struct TFPageUrl
{
    QString nodeCode;        // empty when absent
    QString objVwId;         // text, empty when absent
    int pNodeCode = 0;       // 0 when absent or not a number
    QString title;           // empty when absent
    QList<QPair<QString, QString>> items;   // every query item, in order

    // False for another scheme, or a host that lacks "subjectpage".
    static bool read(const QUrl &url, TFPageUrl *values);
};
