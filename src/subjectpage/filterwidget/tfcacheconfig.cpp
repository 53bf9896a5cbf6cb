#include "filterwidget/tfcacheconfig.h"

#include <QJsonArray>
#include <QJsonObject>

namespace {

// A text field: numbers are written in general format with six digits, so
// 1234567 reads "1.23457e+06".
QString textOf(const QJsonValue &value)
{
    if (value.isDouble())
        return QString::number(value.toDouble(), 'g', 6);
    return value.toString();
}

} // namespace

TFCacheConfig *TFCacheConfig::instance()
{
    static TFCacheConfig config;
    return &config;
}

void TFCacheConfig::initWith(const QJsonValue &data)
{
    m_records.clear();
    const QJsonArray rows = data.toArray();
    for (const QJsonValue &row : rows) {
        const QJsonObject o = row.toObject();
        CodeRecord record;
        record.VALUE = textOf(o.value(QLatin1String("VALUE")));
        record.NAME = o.value(QLatin1String("NAME")).toString();
        record.TYPE = textOf(o.value(QLatin1String("TYPE")));
        record.TYPE_DESC = o.value(QLatin1String("TYPE_DESC")).toString();
        record.FILTER1 = textOf(o.value(QLatin1String("FILTER1")));
        m_records.append(record);
    }
}

void TFCacheConfig::clear()
{
    m_records.clear();
}

QList<TFCacheConfig::CodeRecord> TFCacheConfig::query(const QString &type, const QString &filter) const
{
    QList<CodeRecord> found;
    for (const CodeRecord &record : m_records) {
        if (record.TYPE == type && (filter.isEmpty() || record.FILTER1 == filter))
            found.append(record);
    }
    return found;
}
