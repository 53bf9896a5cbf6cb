// Service replies are outside data: any byte sequence must give a result,
// never a crash, through the envelope check and the readers behind it.
#include "net/tfjsp.h"
#include "net/tfuc.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QString>

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
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    const QString text = QString::fromUtf8(bytes);

    NtResponse response;
    if (TFJSP::parseResponse(text, response)) {
        // A well-formed envelope always carries all four keys.
        (void)response.msg.size();
        if (response.data.isArray())
            (void)TFUc::readViewProperties(response.data.toArray());
    }

    QJsonArray rows;
    if (TFJSP::parseNavTree(text, rows) && rows.isEmpty())
        __builtin_trap();   // a navigation tree is never reported with no rows

    // The property rows arrive as a bare array in a configuration document.
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    if (document.isArray()) {
        const TFUc::TFViewProperties properties = TFUc::readViewProperties(document.array());
        (void)properties.ObjViewType.size();
    }
    return 0;
}
