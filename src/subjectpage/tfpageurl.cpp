#include "tfpageurl.h"

#include <QUrl>
#include <QUrlQuery>

bool TFPageUrl::read(const QUrl &url, TFPageUrl *values)
{
    if (url.scheme().compare(QLatin1String("view"), Qt::CaseInsensitive) != 0
        || !url.host(QUrl::FullyDecoded).contains(QLatin1String("subjectpage"), Qt::CaseInsensitive))
        return false;

    // Lower-casing the whole query makes its keys case-insensitive; the
    // values, the title included, are lowered with them.
    const QUrlQuery query(url.query().toLower());
    const auto value = [&query](const char *key) {
        return query.queryItemValue(QLatin1String(key), QUrl::FullyDecoded);
    };
    values->nodeCode = value("nodecode");
    values->objVwId = value("objvwid");
    bool isNumber = false;
    values->pNodeCode = value("pnodecode").toInt(&isNumber, 10);
    if (!isNumber)
        values->pNodeCode = 0;
    values->title = value("title");
    values->items = query.queryItems(QUrl::FullyDecoded);
    return true;
}
