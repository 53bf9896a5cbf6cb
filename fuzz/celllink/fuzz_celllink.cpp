// A cell's link text comes from configuration and its field values from
// the service: both are outside data. The first line of an input is the
// link; each further line "NAME=value" is a field of the row.
#include "mulittable/tfsujecttableview.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariant>

#include <cstddef>
#include <cstdint>

static void dropMessages(QtMsgType, const QMessageLogContext &, const QString &) {}

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qInstallMessageHandler(dropMessages);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));
    const QStringList lines = text.split(QLatin1Char('\n'));
    QMap<QString, QVariant> row;
    for (int i = 1; i < lines.size(); ++i) {
        const int equals = lines.at(i).indexOf(QLatin1Char('='));
        if (equals > 0)
            row.insert(lines.at(i).left(equals), lines.at(i).mid(equals + 1));
    }
    const QString link = lines.value(0);
    const QString filled = TFSujectTableView::substituteLink(link, row);
    // A link without a query goes on exactly as written.
    if (!QUrl(link).hasQuery() && filled != link)
        __builtin_trap();
    return 0;
}
