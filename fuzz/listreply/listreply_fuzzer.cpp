// A list control's reply and the rows of cached codes are outside data: any
// byte sequence must give entries or none, never a crash.
#include "filterwidget/tfcacheconfig.h"
#include "filterwidget/tfremotelist.h"

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

    const QMap<QString, QString> entries = remoteListEntries(bytes);
    if (!QJsonDocument::fromJson(bytes).isObject() && !entries.isEmpty())
        __builtin_trap();   // only an object can carry entries

    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    TFCacheConfig *cache = TFCacheConfig::instance();
    cache->initWith(document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object()));
    if (!document.isArray() && !cache->records().isEmpty())
        __builtin_trap();   // only an array fills the table
    for (const TFCacheConfig::CodeRecord &record : cache->records()) {
        for (const TFCacheConfig::CodeRecord &found : cache->query(record.TYPE, record.FILTER1)) {
            if (found.TYPE != record.TYPE || (!record.FILTER1.isEmpty() && found.FILTER1 != record.FILTER1))
                __builtin_trap();
        }
    }
    return 0;
}
