#pragma once

#include <QDateTime>
#include <QJsonValue>
#include <QString>
#include <QVariant>

namespace SubjectService {

// What a column holds, as far as filtering and delivery care. The demo
// database declares these as the column types of its tables.
enum class ColumnKind { Integer, Real, Text, Date, YearMonth };

ColumnKind columnKindFromDeclaredType(const QString &declaredType);

// Reads a date as the terminal sends it: "yyyy-MM-dd", "yyyy-MM-dd hh:mm:ss",
// "yyyy-M-d", "/Date(ms+zzzz)", any of them inside "[...]" or quotes, or a
// number of milliseconds since the epoch. Returns an invalid date otherwise.
QDate parseServiceDate(const QJsonValue &value);

// The same forms with their time of day; a date alone is midnight.
QDateTime parseServiceDateTime(const QJsonValue &value);

// "201903", "2019-3", "'2019-03'", "2019-03-31" -> 201903; 0 when unreadable.
int parseYearMonth(const QJsonValue &value);

// Turns one bound value into what SQLite compares the column with. Returns an
// invalid variant and sets *error when the value has the wrong type.
QVariant coerceForColumn(const QJsonValue &value, ColumnKind kind, const QString &field,
                         QString *error);

// A date column travels as milliseconds since the epoch of local midnight.
qint64 dateToServiceMs(const QDate &date);

} // namespace SubjectService
