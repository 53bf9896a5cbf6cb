#include "servicevalue.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTimeZone>

namespace SubjectService {

ColumnKind columnKindFromDeclaredType(const QString &declaredType)
{
    const QString type = declaredType.toUpper();
    if (type == QLatin1String("DATE"))
        return ColumnKind::Date;
    if (type == QLatin1String("YEARMONTH"))
        return ColumnKind::YearMonth;
    if (type.contains(QLatin1String("INT")))
        return ColumnKind::Integer;
    if (type.contains(QLatin1String("REAL")) || type.contains(QLatin1String("DOUB"))
        || type.contains(QLatin1String("FLOA")))
        return ColumnKind::Real;
    return ColumnKind::Text;
}

// A double that converts to a 64-bit integer without loss; the range test
// comes first, since converting a larger double is undefined.
static bool isWhole(double d)
{
    return d > -9.2e18 && d < 9.2e18 && d == double(qint64(d));
}

static QString strippedText(QString text)
{
    text = text.trimmed();
    // The terminal wraps date-times in brackets and year-months in quotes.
    while (text.size() >= 2
           && ((text.startsWith(QLatin1Char('[')) && text.endsWith(QLatin1Char(']')))
               || (text.startsWith(QLatin1Char('\'')) && text.endsWith(QLatin1Char('\''))))) {
        text = text.mid(1, text.size() - 2).trimmed();
    }
    return text;
}

QDateTime parseServiceDateTime(const QJsonValue &value)
{
    if (value.isDouble()) {
        const double ms = value.toDouble();
        if (ms < -1e15 || ms > 1e15)
            return {};
        return QDateTime::fromMSecsSinceEpoch(qint64(ms));
    }
    if (!value.isString())
        return {};
    const QString text = strippedText(value.toString());

    static const QRegularExpression serviceDate(
        QStringLiteral("^/Date\\((-?\\d{1,15})(?:([+-])(\\d{2})(\\d{2}))?\\)/?$"));
    const QRegularExpressionMatch m = serviceDate.match(text);
    if (m.hasMatch()) {
        const qint64 ms = m.captured(1).toLongLong();
        int offsetSeconds = 0;
        if (!m.captured(2).isEmpty()) {
            offsetSeconds = m.captured(3).toInt() * 3600 + m.captured(4).toInt() * 60;
            if (m.captured(2) == QLatin1String("-"))
                offsetSeconds = -offsetSeconds;
        }
        // The offset says in which zone the instant was meant; its wall clock there counts.
        const QDateTime there = QDateTime::fromMSecsSinceEpoch(ms, Qt::OffsetFromUTC, offsetSeconds);
        return QDateTime(there.date(), there.time());
    }

    static const QRegularExpression isoDate(
        QStringLiteral("^(\\d{4})-(\\d{1,2})-(\\d{1,2})(?:[ T](\\d{1,2}):(\\d{2})(?::(\\d{2}))?)?$"));
    const QRegularExpressionMatch d = isoDate.match(text);
    if (!d.hasMatch())
        return {};
    const QDate date(d.captured(1).toInt(), d.captured(2).toInt(), d.captured(3).toInt());
    const QTime time = d.captured(4).isEmpty()
                           ? QTime(0, 0)
                           : QTime(d.captured(4).toInt(), d.captured(5).toInt(), d.captured(6).toInt());
    if (!date.isValid() || !time.isValid())
        return {};
    return QDateTime(date, time);
}

QDate parseServiceDate(const QJsonValue &value)
{
    return parseServiceDateTime(value).date();
}

int parseYearMonth(const QJsonValue &value)
{
    QString text;
    if (value.isDouble()) {
        const double d = value.toDouble();
        if (!isWhole(d))
            return 0;
        text = QString::number(qint64(d));
    } else if (value.isString()) {
        text = strippedText(value.toString());
    } else {
        return 0;
    }
    static const QRegularExpression compact(QStringLiteral("^(\\d{4})(\\d{2})$"));
    static const QRegularExpression dashed(QStringLiteral("^(\\d{4})-(\\d{1,2})(?:-\\d{1,2})?$"));
    QRegularExpressionMatch m = compact.match(text);
    if (!m.hasMatch())
        m = dashed.match(text);
    if (!m.hasMatch())
        return 0;
    const int year = m.captured(1).toInt();
    const int month = m.captured(2).toInt();
    if (month < 1 || month > 12)
        return 0;
    return year * 100 + month;
}

static bool numberFrom(const QJsonValue &value, double *out)
{
    if (value.isDouble()) {
        *out = value.toDouble();
        return true;
    }
    if (value.isString()) {
        bool ok = false;
        const double d = value.toString().trimmed().toDouble(&ok);
        if (ok && qIsFinite(d)) {
            *out = d;
            return true;
        }
    }
    return false;
}

QVariant coerceForColumn(const QJsonValue &value, ColumnKind kind, const QString &field,
                         QString *error)
{
    switch (kind) {
    case ColumnKind::Integer:
    case ColumnKind::Real: {
        double d = 0;
        if (!numberFrom(value, &d)) {
            *error = QStringLiteral("value of wrong type for %1: a number is expected").arg(field);
            return {};
        }
        if (kind == ColumnKind::Integer && isWhole(d))
            return QVariant(qint64(d));
        return QVariant(d);
    }
    case ColumnKind::Date: {
        // Dates are stored as "yyyy-MM-dd", which compares as midnight against
        // "yyyy-MM-dd hh:mm:ss": a bound time of day keeps its meaning, so
        // ">= 2024-01-01 23:59:59" leaves out the first of January itself.
        const QDateTime dateTime = parseServiceDateTime(value);
        if (!dateTime.isValid()) {
            *error = QStringLiteral("value of wrong type for %1: a date is expected").arg(field);
            return {};
        }
        if (dateTime.time() == QTime(0, 0))
            return QVariant(dateTime.date().toString(Qt::ISODate));
        return QVariant(dateTime.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
    }
    case ColumnKind::YearMonth: {
        const int ym = parseYearMonth(value);
        if (ym == 0) {
            *error = QStringLiteral("value of wrong type for %1: a year and month is expected").arg(field);
            return {};
        }
        return QVariant(qint64(ym));
    }
    case ColumnKind::Text:
        if (value.isString())
            return QVariant(value.toString());
        if (value.isDouble()) {
            const double d = value.toDouble();
            return QVariant(isWhole(d) ? QString::number(qint64(d)) : QString::number(d, 'g', 15));
        }
        *error = QStringLiteral("value of wrong type for %1: a text is expected").arg(field);
        return {};
    }
    return {};
}

qint64 dateToServiceMs(const QDate &date)
{
    return QDateTime(date, QTime(0, 0)).toMSecsSinceEpoch();
}

} // namespace SubjectService
