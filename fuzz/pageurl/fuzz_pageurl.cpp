// A page URL is outside data: the host passes on whatever the user or a link
// gave. Each input is read three ways: as a whole URL, as the query of a
// well-formed page URL, and as a URL in its encoded form. What is read must
// agree with the URL: only view URLs whose host has "subjectpage" are taken,
// and every value comes back in small letters.
#include "tfpageurl.h"

#include <QUrl>

#include <cstddef>
#include <cstdint>

namespace {

void check(const QUrl &url)
{
    TFPageUrl values;
    if (!TFPageUrl::read(url, &values))
        return;
    if (url.scheme().compare(QLatin1String("view"), Qt::CaseInsensitive) != 0)
        __builtin_trap();
    // The query was lowered before it was read.
    for (const auto &item : values.items) {
        if (item.first != item.first.toLower() || item.second != item.second.toLower())
            __builtin_trap();
    }
    if (values.title != values.title.toLower() || values.objVwId != values.objVwId.toLower())
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    const QString text = QString::fromUtf8(bytes);
    check(QUrl(text));
    check(QUrl(QStringLiteral("view://subjectpage?") + text));
    check(QUrl::fromEncoded(bytes));
    return 0;
}
