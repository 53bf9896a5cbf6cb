#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QVariant>

#include <functional>

// The named functions that configuration may call: `$today()` in a filter
// default, `=$adddays([Caption])` between two controls, `addyears(1)` inside a
// formula. Most of them answer with dates of the financial reporting
// calendar, so every one of them asks the clock below for "now" and never the
// machine directly.
class TFCustomMath : public QObject
{
    Q_OBJECT
public:
    using TextFunction = std::function<QString(const QList<QVariant> &)>;
    using NumberFunction = std::function<double(const QList<QVariant> &)>;
    using DateFunction = std::function<QDateTime(const QList<QVariant> &)>;
    using Clock = std::function<QDateTime()>;

    // Made on first use and kept for the life of the process.
    static TFCustomMath *instance();

    // The name is matched in lower case with blanks removed. Gives false and
    // leaves result alone for a name that no table knows.
    bool callFunction(const QString &name, const QList<QVariant> &args, QVariant &result) const;

    // The local date and time that counts as "now". An empty clock restores
    // the system clock. Tests set a fixed day here.
    void setClock(Clock clock);
    QDateTime now() const;

    // Reads the service's date text "/Date(1596124800000+0800)"; anything
    // else gives an invalid date-time.
    static QDateTime dateFromServiceText(const QString &text);

private:
    TFCustomMath();

    QList<QDateTime> dateArguments(const QList<QVariant> &args) const;
    enum class Step { Years, Months, Days };
    QString shiftedToday(const QList<QVariant> &args, Step step) const;

    QString yearsBetweenDates(const QList<QVariant> &args) const;
    QString datesBetweenDates(const QList<QVariant> &args) const;
    QString yearsOfTwoDates(const QList<QVariant> &args) const;
    QString today(const QList<QVariant> &args) const;
    QString latestAnnualReport() const;
    double toDecimal(const QList<QVariant> &args) const;
    double yearOf(const QList<QVariant> &args) const;
    QDateTime latestQuarterEnd() const;

    QHash<QString, TextFunction> m_textFunctions;
    QHash<QString, NumberFunction> m_numberFunctions;
    QHash<QString, DateFunction> m_dateFunctions;
    QString m_separator = QStringLiteral(",");
    Clock m_clock;
};
