#pragma once

#include <QJsonValue>
#include <QList>
#include <QString>

// The process-wide table of code records (regions, index constituents, ...)
// that list controls offer by type. The main frame fills it once the
// navigation stands; everything runs on the user-interface thread.
class TFCacheConfig
{
public:
    struct CodeRecord
    {
        QString VALUE;
        QString NAME;
        QString TYPE;
        QString TYPE_DESC;
        QString FILTER1;
    };

    static TFCacheConfig *instance();

    // Replaces the table with the records of an array of objects. Anything
    // else, or an empty array, leaves the table empty.
    void initWith(const QJsonValue &data);
    void clear();

    QList<CodeRecord> records() const { return m_records; }
    // The records whose TYPE is type and, when filter is not empty, whose
    // FILTER1 is filter, in table order.
    QList<CodeRecord> query(const QString &type, const QString &filter) const;

private:
    TFCacheConfig() = default;

    QList<CodeRecord> m_records;
};
