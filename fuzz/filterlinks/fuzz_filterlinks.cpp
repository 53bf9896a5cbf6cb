// Input: a link text, then a NUL, then the row's field names, one a line.
// The same text is also read as an order text.
#include "filterwidget/tffilterfactory.h"

#include <QJsonObject>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    const int split = bytes.indexOf('\0');
    const QString text = QString::fromUtf8(split < 0 ? bytes : bytes.left(split));
    const QStringList fields =
        split < 0 ? QStringList() : QString::fromUtf8(bytes.mid(split + 1)).split(QLatin1Char('\n'));

    TFFilterFactory factory;
    factory.parse(text, fields);
    for (const TFFilterFactory::Link &link : factory.links()) {
        // A link joins two named fields, and its target finds a source.
        if (link.sourceField.isEmpty() || link.targetField.isEmpty()
            || factory.target(link.targetField).isEmpty())
            __builtin_trap();
    }

    const FilterParam::DataSourceFilter order = TFFilterFactory::orderFilter(text);
    if (text.isEmpty() != order.key.isEmpty())
        __builtin_trap();
    const QJsonObject object = order.value.toJsonObject();
    for (auto it = object.begin(); it != object.end(); ++it) {
        if (it.value().toInt() != 1 && it.value().toInt() != -1)
            __builtin_trap();
    }
    return 0;
}
