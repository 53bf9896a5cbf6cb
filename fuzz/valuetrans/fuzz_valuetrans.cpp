// Input: the value type up to the first newline, then the value text. Both
// forms of the conversion run on it, and what a request body relies on is
// checked: the type of the result and, for lists, one element per part.
#include "tftoolsfunc.h"

#include <QString>
#include <QVariant>

#include <cstddef>
#include <cstdint>

static void dropMessages(QtMsgType, const QMessageLogContext &, const QString &) {}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(dropMessages);
    return 0;
}

static bool is(const QString &type, const char *name)
{
    return type.compare(QLatin1String(name), Qt::CaseInsensitive) == 0;
}

static int partCount(const QString &source)
{
    if (source.contains(QLatin1Char(',')))
        return source.count(QLatin1Char(',')) + 1;
    if (source.contains(QLatin1Char(';')))
        return source.count(QLatin1Char(';')) + 1;
    return 1;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString input = QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));
    const int newline = input.indexOf(QLatin1Char('\n'));
    const QString type = newline < 0 ? QString() : input.left(newline);
    const QString source = newline < 0 ? input : input.mid(newline + 1);

    const QVariant text = TFToolsFunc::valueTrans(source, type);
    if (is(type, "datetime")) {
        if (text.userType() != QMetaType::QString || text.toString() != QLatin1Char('[') + source + QLatin1Char(']'))
            __builtin_trap();
    } else if (is(type, "decimal")) {
        if (text.userType() != QMetaType::LongLong)
            __builtin_trap();
    } else if (is(type, "intlist")) {
        const QVariantList list = text.toList();
        if (text.userType() != QMetaType::QVariantList || list.size() != partCount(source))
            __builtin_trap();
        for (const QVariant &element : list) {
            if (element.userType() != QMetaType::LongLong)
                __builtin_trap();
        }
    } else if (text.userType() != QMetaType::QString || text.toString() != source) {
        __builtin_trap();
    }

    // The variant form: lists pass unchanged, anything else goes the text way.
    const QVariant list = QVariant(source.split(QLatin1Char(',')));
    const QVariant passed = TFToolsFunc::valueTrans(list, type);
    if (is(type, "intlist") || is(type, "stringlist")) {
        if (passed != list)
            __builtin_trap();
    } else if (TFToolsFunc::valueTrans(QVariant(source), type) != text) {
        __builtin_trap();
    }
    return 0;
}
