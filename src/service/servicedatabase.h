#pragma once

#include "filterexpression.h"

#include <QJsonArray>
#include <QHash>
#include <QMap>
#include <QString>
#include <QVariantList>
#include <QVector>

#include <memory>
#include <mutex>
#include <vector>

struct sqlite3;

namespace SubjectService {

// The demo database: made on first use, then read by many request threads,
// each borrowing a read-only connection of its own.
class ServiceDatabase
{
public:
    ServiceDatabase() = default;
    ~ServiceDatabase();
    ServiceDatabase(const ServiceDatabase &) = delete;
    ServiceDatabase &operator=(const ServiceDatabase &) = delete;

    // Opens the file, generating the demo data first when it is missing or
    // was left unfinished.
    bool open(const QString &path, int scale, QString *error);
    void close();

    bool hasTable(const QString &table) const { return m_columns.contains(table.toUpper()); }
    ColumnSet columns(const QString &table) const { return m_columns.value(table.toUpper()); }
    QString tableName(const QString &table) const { return m_tableNames.value(table.toUpper()); }

    // Runs one SELECT. Each row becomes an object of column name to value;
    // dates as milliseconds since the epoch, year-months as numbers.
    bool select(const QString &sql, const QVariantList &bindings, QJsonArray *rows,
                QString *error) const;
    // The rowids that a "SELECT rowid ... ORDER BY ..." gives. The database is
    // never written after it is made, so they are kept: every page of one
    // filter and order is then a lookup by rowid, however deep the page.
    using RowIds = std::shared_ptr<const QVector<qint64>>;
    RowIds selectRowIds(const QString &sql, const QVariantList &bindings, QString *error) const;

private:
    sqlite3 *acquire(QString *error) const;
    void release(sqlite3 *db) const;
    bool readSchema(QString *error);

    QString m_path;
    QMap<QString, ColumnSet> m_columns;   // by upper-cased table name
    QMap<QString, QString> m_tableNames;
    mutable std::mutex m_cacheMutex;
    mutable QHash<QString, RowIds> m_rowIds;
    mutable qint64 m_rowIdTotal = 0;
    mutable std::mutex m_poolMutex;
    mutable std::vector<sqlite3 *> m_pool;
};

} // namespace SubjectService
