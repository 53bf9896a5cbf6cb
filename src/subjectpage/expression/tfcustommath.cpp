#include "tfcustommath.h"

#include <QRegExp>
#include <QStringList>

#include <cstdlib>

TFCustomMath *TFCustomMath::instance()
{
    // Never destroyed: filter controls keep the pointer for their lifetime.
    static TFCustomMath *math = new TFCustomMath;
    return math;
}

TFCustomMath::TFCustomMath()
{
    m_textFunctions.insert(QStringLiteral("getyearsbetrweemdate"),
                           [this](const QList<QVariant> &a) { return yearsBetweenDates(a); });
    m_textFunctions.insert(QStringLiteral("getdatesbetrweemdate"),
                           [this](const QList<QVariant> &a) { return datesBetweenDates(a); });
    m_textFunctions.insert(QStringLiteral("ofbetweenyear"),
                           [this](const QList<QVariant> &a) { return yearsOfTwoDates(a); });
    m_textFunctions.insert(QStringLiteral("addyears"),
                           [this](const QList<QVariant> &a) { return shiftedToday(a, Step::Years); });
    m_textFunctions.insert(QStringLiteral("addmonths"),
                           [this](const QList<QVariant> &a) { return shiftedToday(a, Step::Months); });
    m_textFunctions.insert(QStringLiteral("adddays"),
                           [this](const QList<QVariant> &a) { return shiftedToday(a, Step::Days); });
    m_textFunctions.insert(QStringLiteral("today"),
                           [this](const QList<QVariant> &a) { return today(a); });
    m_textFunctions.insert(QStringLiteral("getlastedyearreport"),
                           [this](const QList<QVariant> &) { return latestAnnualReport(); });

    m_numberFunctions.insert(QStringLiteral("todecimal"),
                             [this](const QList<QVariant> &a) { return toDecimal(a); });
    m_numberFunctions.insert(QStringLiteral("ofyear"),
                             [this](const QList<QVariant> &a) { return yearOf(a); });

    // Both names have always meant the same date: the end of the latest
    // finished quarter.
    const DateFunction quarterEnd = [this](const QList<QVariant> &) { return latestQuarterEnd(); };
    m_dateFunctions.insert(QStringLiteral("fndgetlatestphaseyearreport"), quarterEnd);
    m_dateFunctions.insert(QStringLiteral("fndgetlatestquarterlyreport"), quarterEnd);
}

bool TFCustomMath::callFunction(const QString &name, const QList<QVariant> &args, QVariant &result) const
{
    QString key;
    key.reserve(name.size());
    for (QChar c : name) {
        if (!c.isSpace())
            key.append(c.toLower());
    }

    const auto text = m_textFunctions.constFind(key);
    if (text != m_textFunctions.constEnd()) {
        result = QVariant(text.value()(args));
        return true;
    }
    const auto number = m_numberFunctions.constFind(key);
    if (number != m_numberFunctions.constEnd()) {
        result = QVariant(number.value()(args));
        return true;
    }
    const auto date = m_dateFunctions.constFind(key);
    if (date != m_dateFunctions.constEnd()) {
        result = QVariant(date.value()(args));
        return true;
    }
    return false;
}

void TFCustomMath::setClock(Clock clock)
{
    m_clock = std::move(clock);
}

QDateTime TFCustomMath::now() const
{
    return m_clock ? m_clock() : QDateTime::currentDateTime();
}

// "/Date(1596124800000+0800)": milliseconds since the epoch, then the zone
// offset as sign, hours and minutes. Only the hours of the offset count, so
// "+0530" is read as five hours. The two numbers are read as the toolkit
// reads them, without a check, as the service never sends anything else.
QDateTime TFCustomMath::dateFromServiceText(const QString &text)
{
    if (text.isEmpty())
        return QDateTime();
    QRegExp inParentheses(QStringLiteral("\\(.*\\)"));
    if (inParentheses.indexIn(text) < 0)
        return QDateTime();

    QString inner = inParentheses.cap(0);
    inner.remove(QLatin1Char('(')).remove(QLatin1Char(')'));
    const int length = inner.size();
    const qint64 msecs = inner.left(length - 5).toLongLong();
    const int offsetHours = inner.mid(length - 5, 3).toInt();
    return QDateTime::fromMSecsSinceEpoch(msecs, Qt::OffsetFromUTC, offsetHours * 3600);
}

// An argument that gives no date is left out, so a caller that counts on
// two dates sees fewer.
QList<QDateTime> TFCustomMath::dateArguments(const QList<QVariant> &args) const
{
    QList<QDateTime> dates;
    for (const QVariant &arg : args) {
        const QDateTime date = dateFromServiceText(arg.toString());
        if (date.isValid())
            dates.append(date);
    }
    return dates;
}

// Month ends follow the toolkit: 31 January plus one month is the last day
// of February.
QString TFCustomMath::shiftedToday(const QList<QVariant> &args, Step step) const
{
    if (args.size() != 1)
        return QString();
    bool ok = false;
    const int n = args.first().toInt(&ok);
    if (!ok)
        return QString();
    const QDateTime today = now();
    QDateTime shifted;
    switch (step) {
    case Step::Years: shifted = today.addYears(n); break;
    case Step::Months: shifted = today.addMonths(n); break;
    case Step::Days: shifted = today.addDays(n); break;
    }
    return shifted.toString(QStringLiteral("yyyy-MM-dd"));
}

// From the first date's year to the second's, both ends included, running
// backward when the second is the earlier.
QString TFCustomMath::yearsBetweenDates(const QList<QVariant> &args) const
{
    const QList<QDateTime> dates = dateArguments(args);
    if (dates.size() != 2)
        return QString();
    const QDateTime &first = dates.at(0);
    const int n = dates.at(1).date().year() - first.date().year();
    const int step = n >= 1 ? 1 : -1;
    QStringList years;
    for (int i = 0; i <= std::abs(n); ++i)
        years.append(first.addYears(step * i).toString(QStringLiteral("yyyy")));
    return years.join(m_separator);
}

QString TFCustomMath::datesBetweenDates(const QList<QVariant> &args) const
{
    const QList<QDateTime> dates = dateArguments(args);
    if (dates.size() != 2)
        return QString();
    const QDateTime &first = dates.at(0);
    const qint64 n = first.daysTo(dates.at(1));
    if (n < 0)
        return QString();
    QStringList days;
    for (qint64 i = 0; i <= n; ++i)
        days.append(first.addDays(i).toString(QStringLiteral("yyyy-MM-dd")));
    return days.join(m_separator);
}

QString TFCustomMath::yearsOfTwoDates(const QList<QVariant> &args) const
{
    const QList<QDateTime> dates = dateArguments(args);
    const QString pattern = QStringLiteral("%1%2%3");
    if (dates.size() == 2)
        return pattern.arg(dates.at(0).date().year()).arg(m_separator).arg(dates.at(1).date().year());
    const int year = now().date().year();
    return pattern.arg(year).arg(m_separator).arg(year);
}

// Strict on purpose: `$today(x)` is a configuration error and shows as one.
QString TFCustomMath::today(const QList<QVariant> &args) const
{
    if (!args.isEmpty())
        return QString();
    return now().toString(QStringLiteral("yyyy-MM-dd"));
}

// Annual reports are due by the end of April. Until then the report of the
// year before last is the latest one every company has published.
QString TFCustomMath::latestAnnualReport() const
{
    const QDate today = now().date();
    const int yearsBack = today.month() >= 5 ? 1 : 2;
    return QDate(today.year() - yearsBack, 12, 31).toString(QStringLiteral("yyyy-MM-dd"));
}

double TFCustomMath::toDecimal(const QList<QVariant> &args) const
{
    if (args.size() != 1)
        return 0.0;
    bool ok = false;
    const double value = args.first().toDouble(&ok);
    return ok ? value : 0.0;
}

double TFCustomMath::yearOf(const QList<QVariant> &args) const
{
    const double currentYear = now().date().year();
    if (args.size() != 1)
        return currentYear;
    QRegExp date(QStringLiteral("(\\d+)-(\\d+)-(\\d+)"));
    if (date.indexIn(args.first().toString()) < 0 || date.captureCount() != 3)
        return currentYear;
    bool ok = false;
    const int year = date.cap(1).toInt(&ok);
    return ok ? year : currentYear;
}

// The quarter that ended last, judged by the month alone: on 1 October the
// third quarter counts as finished though nobody has reported it yet.
QDateTime TFCustomMath::latestQuarterEnd() const
{
    const QDate today = now().date();
    const int year = today.year();
    QDate end;
    switch ((today.month() - 1) / 3) {
    case 3: end = QDate(year, 9, 30); break;
    case 2: end = QDate(year, 6, 30); break;
    case 1: end = QDate(year, 3, 31); break;
    default: end = QDate(year - 1, 12, 31); break;
    }
    return QDateTime(end, QTime(0, 0));
}
