#include "servicedatabase.h"

#include "demodatagenerator.h"

#include <QDate>
#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QThread>
#include <QCoreApplication>

#include <sqlite3.h>

namespace SubjectService {

namespace {

struct Statement
{
    sqlite3_stmt *stmt = nullptr;
    ~Statement() { sqlite3_finalize(stmt); }
};

bool bindAll(sqlite3_stmt *stmt, const QVariantList &bindings)
{
    for (int i = 0; i < bindings.size(); ++i) {
        const QVariant &v = bindings.at(i);
        int rc = SQLITE_OK;
        switch (v.userType()) {
        case QMetaType::LongLong:
        case QMetaType::Int:
        case QMetaType::Bool:
            rc = sqlite3_bind_int64(stmt, i + 1, v.toLongLong());
            break;
        case QMetaType::Double:
            rc = sqlite3_bind_double(stmt, i + 1, v.toDouble());
            break;
        default: {
            const QByteArray text = v.toString().toUtf8();
            rc = sqlite3_bind_text(stmt, i + 1, text.constData(), text.size(), SQLITE_TRANSIENT);
        }
        }
        if (rc != SQLITE_OK)
            return false;
    }
    return true;
}

bool isComplete(const QString &path)
{
    sqlite3 *db = nullptr;
    if (sqlite3_open_v2(QFile::encodeName(path).constData(), &db, SQLITE_OPEN_READONLY, nullptr) != SQLITE_OK) {
        sqlite3_close(db);
        return false;
    }
    bool complete = false;
    sqlite3_stmt *stmt = nullptr;
    if (sqlite3_prepare_v2(db, "SELECT value FROM demo_meta WHERE key='version'", -1, &stmt, nullptr) == SQLITE_OK
        && sqlite3_step(stmt) == SQLITE_ROW) {
        complete = sqlite3_column_int(stmt, 0) == DemoDataGenerator::version();
    }
    sqlite3_finalize(stmt);
    sqlite3_close(db);
    return complete;
}

} // namespace

ServiceDatabase::~ServiceDatabase()
{
    close();
}

void ServiceDatabase::close()
{
    std::lock_guard<std::mutex> lock(m_poolMutex);
    for (sqlite3 *db : m_pool)
        sqlite3_close(db);
    m_pool.clear();
}

bool ServiceDatabase::open(const QString &path, int scale, QString *error)
{
    m_path = path;
    if (!QFileInfo::exists(path) || !isComplete(path)) {
        // Generate beside the target and move it in place when done, so that a
        // second process never sees half a database.
        const QString temporary = QStringLiteral("%1.tmp-%2-%3")
                                      .arg(path)
                                      .arg(QCoreApplication::applicationPid())
                                      .arg(quintptr(QThread::currentThreadId()));
        QFile::remove(temporary);
        DemoDataGenerator generator(scale);
        if (!generator.generate(temporary, error)) {
            QFile::remove(temporary);
            return false;
        }
        if (!isComplete(path)) {
            QFile::remove(path);
            if (!QFile::rename(temporary, path)) {
                QFile::remove(temporary);
                if (!isComplete(path)) {
                    *error = QStringLiteral("cannot move the generated database to %1").arg(path);
                    return false;
                }
            }
        } else {
            QFile::remove(temporary);
        }
    }
    if (!readSchema(error))
        return false;
    QJsonArray meta;
    QString metaError;
    if (select(QStringLiteral("SELECT value FROM demo_meta WHERE key = 'scale'"), {}, &meta, &metaError)
        && !meta.isEmpty()) {
        const int fileScale = meta.at(0).toObject().value(QLatin1String("value")).toInt();
        if (fileScale != scale)
            qWarning() << "the database" << path << "holds scale" << fileScale << "and not" << scale
                       << "; remove it to generate the other scale";
    }
    return true;
}

bool ServiceDatabase::readSchema(QString *error)
{
    sqlite3 *db = acquire(error);
    if (!db)
        return false;
    QStringList tables;
    {
        Statement s;
        sqlite3_prepare_v2(db, "SELECT name FROM sqlite_master WHERE type IN ('table','view')", -1, &s.stmt, nullptr);
        while (s.stmt && sqlite3_step(s.stmt) == SQLITE_ROW)
            tables.append(QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(s.stmt, 0))));
    }
    for (const QString &table : qAsConst(tables)) {
        Statement s;
        const QByteArray sql = QStringLiteral("PRAGMA table_info(\"%1\")").arg(table).toUtf8();
        sqlite3_prepare_v2(db, sql.constData(), -1, &s.stmt, nullptr);
        ColumnSet set;
        while (s.stmt && sqlite3_step(s.stmt) == SQLITE_ROW) {
            ColumnInfo info;
            info.name = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(s.stmt, 1)));
            const char *type = reinterpret_cast<const char *>(sqlite3_column_text(s.stmt, 2));
            info.kind = columnKindFromDeclaredType(QString::fromUtf8(type ? type : ""));
            set.insert(info.name.toUpper(), info);
        }
        m_columns.insert(table.toUpper(), set);
        m_tableNames.insert(table.toUpper(), table);
    }
    release(db);
    return true;
}

sqlite3 *ServiceDatabase::acquire(QString *error) const
{
    {
        std::lock_guard<std::mutex> lock(m_poolMutex);
        if (!m_pool.empty()) {
            sqlite3 *db = m_pool.back();
            m_pool.pop_back();
            return db;
        }
    }
    sqlite3 *db = nullptr;
    const int rc = sqlite3_open_v2(QFile::encodeName(m_path).constData(), &db,
                                   SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc != SQLITE_OK) {
        *error = QStringLiteral("cannot open the database: %1").arg(QString::fromUtf8(sqlite3_errmsg(db)));
        sqlite3_close(db);
        return nullptr;
    }
    sqlite3_busy_timeout(db, 5000);
    sqlite3_exec(db, "PRAGMA mmap_size=1073741824", nullptr, nullptr, nullptr);
    return db;
}

void ServiceDatabase::release(sqlite3 *db) const
{
    std::lock_guard<std::mutex> lock(m_poolMutex);
    m_pool.push_back(db);
}

bool ServiceDatabase::select(const QString &sql, const QVariantList &bindings, QJsonArray *rows,
                             QString *error) const
{
    sqlite3 *db = acquire(error);
    if (!db)
        return false;
    bool ok = true;
    {
        Statement s;
        const QByteArray utf8 = sql.toUtf8();
        if (sqlite3_prepare_v2(db, utf8.constData(), utf8.size(), &s.stmt, nullptr) != SQLITE_OK
            || !bindAll(s.stmt, bindings)) {
            *error = QStringLiteral("query failed: %1").arg(QString::fromUtf8(sqlite3_errmsg(db)));
            qWarning() << "query failed:" << sql << sqlite3_errmsg(db);
            ok = false;
        } else {
            const int columnCount = sqlite3_column_count(s.stmt);
            QVector<QString> names(columnCount);
            QVector<ColumnKind> kinds(columnCount);
            for (int c = 0; c < columnCount; ++c) {
                names[c] = QString::fromUtf8(sqlite3_column_name(s.stmt, c));
                const char *declared = sqlite3_column_decltype(s.stmt, c);
                kinds[c] = columnKindFromDeclaredType(QString::fromUtf8(declared ? declared : ""));
            }
            int rc;
            while ((rc = sqlite3_step(s.stmt)) == SQLITE_ROW) {
                QJsonObject row;
                for (int c = 0; c < columnCount; ++c) {
                    switch (sqlite3_column_type(s.stmt, c)) {
                    case SQLITE_NULL:
                        row.insert(names[c], QJsonValue::Null);
                        break;
                    case SQLITE_INTEGER:
                        row.insert(names[c], double(sqlite3_column_int64(s.stmt, c)));
                        break;
                    case SQLITE_FLOAT:
                        row.insert(names[c], sqlite3_column_double(s.stmt, c));
                        break;
                    default: {
                        const QString text = QString::fromUtf8(
                            reinterpret_cast<const char *>(sqlite3_column_text(s.stmt, c)),
                            sqlite3_column_bytes(s.stmt, c));
                        if (kinds[c] == ColumnKind::Date) {
                            const QDate date = QDate::fromString(text, Qt::ISODate);
                            row.insert(names[c], date.isValid() ? QJsonValue(double(dateToServiceMs(date)))
                                                                : QJsonValue(QJsonValue::Null));
                        } else {
                            row.insert(names[c], text);
                        }
                    }
                    }
                }
                rows->append(row);
            }
            if (rc != SQLITE_DONE) {
                *error = QStringLiteral("query failed: %1").arg(QString::fromUtf8(sqlite3_errmsg(db)));
                ok = false;
            }
        }
    }
    release(db);
    return ok;
}

namespace {

QString cacheKey(const QString &sql, const QVariantList &bindings)
{
    QString key = sql;
    for (const QVariant &binding : bindings)
        key += QChar(0x1f) + QString::number(binding.userType()) + QChar(0x1e) + binding.toString();
    return key;
}

} // namespace

ServiceDatabase::RowIds ServiceDatabase::selectRowIds(const QString &sql, const QVariantList &bindings,
                                                      QString *error) const
{
    const QString key = cacheKey(sql, bindings);
    {
        std::lock_guard<std::mutex> lock(m_cacheMutex);
        const auto it = m_rowIds.constFind(key);
        if (it != m_rowIds.constEnd())
            return it.value();
    }
    sqlite3 *db = acquire(error);
    if (!db)
        return nullptr;
    auto ids = std::make_shared<QVector<qint64>>();
    bool ok = true;
    {
        Statement s;
        const QByteArray utf8 = sql.toUtf8();
        if (sqlite3_prepare_v2(db, utf8.constData(), utf8.size(), &s.stmt, nullptr) != SQLITE_OK
            || !bindAll(s.stmt, bindings)) {
            ok = false;
        } else {
            int rc;
            while ((rc = sqlite3_step(s.stmt)) == SQLITE_ROW)
                ids->append(sqlite3_column_int64(s.stmt, 0));
            ok = rc == SQLITE_DONE;
        }
        if (!ok) {
            *error = QStringLiteral("query failed: %1").arg(QString::fromUtf8(sqlite3_errmsg(db)));
            qWarning() << "query failed:" << sql << sqlite3_errmsg(db);
        }
    }
    release(db);
    if (!ok)
        return nullptr;
    std::lock_guard<std::mutex> lock(m_cacheMutex);
    // About 128 MB of rowids at most; past that, start again.
    if (m_rowIdTotal + ids->size() > 16 * 1024 * 1024) {
        m_rowIds.clear();
        m_rowIdTotal = 0;
    }
    m_rowIds.insert(key, ids);
    m_rowIdTotal += ids->size();
    return ids;
}

} // namespace SubjectService
