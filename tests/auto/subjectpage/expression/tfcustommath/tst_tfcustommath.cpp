#include <QtTest>

#include "expression/tfcustommath.h"

// The service writes dates as "/Date(<ms since epoch><sign><hh><mm>)".
static QString sd(const QDate &date, int offsetHours = 8, const QTime &time = QTime(0, 0))
{
    const QDateTime dateTime(date, time, Qt::OffsetFromUTC, offsetHours * 3600);
    return QStringLiteral("/Date(%1%2%3)")
        .arg(dateTime.toMSecsSinceEpoch())
        .arg(offsetHours < 0 ? QLatin1Char('-') : QLatin1Char('+'))
        .arg(qAbs(offsetHours) * 100, 4, 10, QLatin1Char('0'));
}

// An unknown name answers invalid, provided it left the result alone.
static QVariant call(const QString &name, const QVariantList &args = {})
{
    QVariant result(QStringLiteral("untouched"));
    if (TFCustomMath::instance()->callFunction(name, args, result))
        return result;
    return result == QVariant(QStringLiteral("untouched")) ? QVariant() : QVariant(QStringLiteral("touched"));
}

// Type and value: QVariant's == would take the text "2025" for 2025.0.
static QString typed(const QVariant &value)
{
    return QStringLiteral("%1 %2").arg(QLatin1String(value.typeName()), value.toString());
}

static QDateTime at(int y, int m, int d, const QTime &time = QTime(12, 0))
{
    return QDateTime(QDate(y, m, d), time);
}

class tst_TFCustomMath : public QObject
{
    Q_OBJECT

    static void setNow(const QDateTime &now) { TFCustomMath::instance()->setClock([now] { return now; }); }

private slots:
    void cleanup() { TFCustomMath::instance()->setClock({}); }
    void reportCalendar_data();
    void reportCalendar();
    void callFunction_data();
    void callFunction();
    void serviceDate_data();
    void serviceDate();
    void systemClockByDefault();
};

// The latest annual report moves on 1 May; the latest quarter end moves on
// the first day of January, April, July and October. The day of the month
// and the time of day play no part.
void tst_TFCustomMath::reportCalendar_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QString>("annual");
    QTest::addColumn<QDate>("quarter");

    const QTime late(23, 59, 59);
    QTest::newRow("new year's eve") << at(2025, 12, 31, late) << "2024-12-31" << QDate(2025, 9, 30);
    QTest::newRow("new year's day") << at(2026, 1, 1, QTime(0, 0)) << "2024-12-31" << QDate(2025, 12, 31);
    QTest::newRow("last of March") << at(2026, 3, 31, late) << "2024-12-31" << QDate(2025, 12, 31);
    QTest::newRow("first of April") << at(2026, 4, 1, QTime(0, 0)) << "2024-12-31" << QDate(2026, 3, 31);
    QTest::newRow("last of April, late") << at(2026, 4, 30, late) << "2024-12-31" << QDate(2026, 3, 31);
    QTest::newRow("first of May, early") << at(2026, 5, 1, QTime(0, 0)) << "2025-12-31" << QDate(2026, 3, 31);
    QTest::newRow("first of July") << at(2026, 7, 1) << "2025-12-31" << QDate(2026, 6, 30);
    QTest::newRow("mid-August, afternoon") << at(2026, 8, 17, QTime(15, 45, 12)) << "2025-12-31" << QDate(2026, 6, 30);
    // No report of the third quarter exists yet on 1 October; the date answers anyway.
    QTest::newRow("first of October") << at(2026, 10, 1) << "2025-12-31" << QDate(2026, 9, 30);
    QTest::newRow("leap day") << at(2024, 2, 29) << "2022-12-31" << QDate(2023, 12, 31);
}

void tst_TFCustomMath::reportCalendar()
{
    QFETCH(QDateTime, now);
    QFETCH(QString, annual);
    QFETCH(QDate, quarter);
    setNow(now);

    // The annual date is text, the quarter end a date and time at midnight;
    // whatever arguments come are ignored.
    QCOMPARE(typed(call("getlastedyearreport", {"x", 3})), typed(annual));
    const QString quarterEnd = typed(QDateTime(quarter, QTime(0, 0)));
    QCOMPARE(typed(call("fndgetlatestquarterlyreport")), quarterEnd);
    QCOMPARE(typed(call("fndGetLatestPhaseYearReport", {1})), quarterEnd);
}

void tst_TFCustomMath::callFunction_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariantList>("args");
    QTest::addColumn<QVariant>("expected");   // its type too; invalid: an unknown name

    const QDateTime evening = at(2026, 1, 15, QTime(23, 30));
    // Date arithmetic is the toolkit's: one row per function and what its
    // arguments may be.
    auto shift = [](const char *tag, const QDate &today, const char *name, const QVariantList &args, const char *result) {
        QTest::newRow(tag) << QDateTime(today, QTime(23, 30)) << name << args << QVariant(QString::fromLatin1(result));
    };
    shift("yesterday", QDate(2026, 5, 1), "adddays", {"-1"}, "2026-04-30");
    shift("integer argument", QDate(2026, 1, 15), "adddays", {2}, "2026-01-17");
    shift("day shift without argument", QDate(2026, 1, 15), "adddays", {}, "");
    shift("day shift by a fraction", QDate(2026, 1, 15), "adddays", {"1.5"}, "");
    shift("day shift by two", QDate(2026, 1, 15), "adddays", {"1", "2"}, "");
    shift("month end clamps", QDate(2026, 1, 31), "addmonths", {"1"}, "2026-02-28");
    shift("month back over year end", QDate(2026, 1, 31), "addmonths", {"-2"}, "2025-11-30");
    shift("leap day plus a year", QDate(2024, 2, 29), "addyears", {"1"}, "2025-02-28");
    shift("year shift by a word", QDate(2026, 4, 30), "addyears", {"one"}, "");

    // Names are read without case and blanks; the misspelling is the name.
    const QDateTime leapDawn = at(2024, 2, 29, QTime(0, 0, 1));
    QTest::newRow("today") << leapDawn << "TODAY" << QVariantList{} << QVariant("2024-02-29");
    // Strict: any argument at all, even an empty one, is refused.
    QTest::newRow("today with an empty argument") << leapDawn << "today" << QVariantList{QString()} << QVariant("");
    QTest::newRow("today with an argument") << leapDawn << "today" << QVariantList{"0"} << QVariant("");
    QTest::newRow("correct spelling is unknown") << evening << "getYearsBetweenDate" << QVariantList{} << QVariant();
    QTest::newRow("unknown") << evening << "round" << QVariantList{"1.5"} << QVariant();

    const QString d2019 = sd(QDate(2019, 3, 1)), d2021 = sd(QDate(2021, 11, 30)), d2019Jan = sd(QDate(2019, 1, 1));
    auto list = [evening](const char *tag, const char *name, const QVariantList &args, const char *result) {
        QTest::newRow(tag) << evening << name << args << QVariant(QString::fromUtf8(result));
    };
    list("years between", "getYearsBetrweemDate", {d2019, d2021}, "2019,2020,2021");
    list("years between, backward", " get Years\tBetrweem Date ", {d2021, d2019}, "2021,2020,2019");
    list("years between, one year", "getyearsbetrweemdate", {d2019, sd(QDate(2019, 12, 31))}, "2019");
    // The year is read in the offset of the text: midnight of New Year in
    // China is still the old year in UTC.
    list("years from new year's day", "getyearsbetrweemdate", {sd(QDate(2020, 1, 1)), sd(QDate(2021, 1, 1))}, "2020,2021");
    list("years from new year's eve", "getyearsbetrweemdate", {sd(QDate(2019, 12, 31), 8, QTime(23, 59)), d2021},
         "2019,2020,2021");
    list("years between one date", "getyearsbetrweemdate", {d2019}, "");
    list("years between three dates", "getyearsbetrweemdate", {d2019, d2021, d2019}, "");
    // The form of filter defaults is no date here: only one date remains.
    list("years between, filter date form", "getyearsbetrweemdate", {"date'2019-01-01'", d2021}, "");
    list("dates over leap day", "getdatesbetrweemdate", {sd(QDate(2020, 2, 27)), sd(QDate(2020, 3, 1))},
         "2020-02-27,2020-02-28,2020-02-29,2020-03-01");
    list("dates of one day", "getdatesbetrweemdate", {sd(QDate(2026, 4, 30)), sd(QDate(2026, 4, 30), 8, QTime(18, 0))},
         "2026-04-30");
    list("dates, later first", "getdatesbetrweemdate", {sd(QDate(2026, 5, 1)), sd(QDate(2026, 4, 30))}, "");
    list("dates of one date", "getdatesbetrweemdate", {sd(QDate(2026, 5, 1))}, "");
    // Without two service dates, the year of today twice.
    list("years of two dates", "ofbetweenyear", {d2019Jan, d2021}, "2019,2021");
    list("years of no dates", "ofbetweenyear", {}, "2026,2026");
    list("years of filter dates", "ofbetweenyear", {"date'2019-01-01'", "date'2020-01-01'"}, "2026,2026");
    list("years of three dates", "ofbetweenyear", {d2019Jan, d2019, d2021}, "2026,2026");

    const QDateTime yearEnd = at(2025, 12, 31, QTime(23, 59, 59));
    QTest::newRow("year of today") << yearEnd << "ofyear" << QVariantList{} << QVariant(2025.0);
    QTest::newRow("year of a date") << yearEnd << "ofyear" << QVariantList{"2019-06-30"} << QVariant(2019.0);
    QTest::newRow("year inside other text") << yearEnd << "ofyear" << QVariantList{"date'2018-1-1'"} << QVariant(2018.0);
    QTest::newRow("year of no date") << yearEnd << "ofyear" << QVariantList{"2019"} << QVariant(2025.0);
    QTest::newRow("year too long") << yearEnd << "ofyear" << QVariantList{"99999999999-1-1"} << QVariant(2025.0);
    QTest::newRow("year of two dates") << yearEnd << "ofyear" << QVariantList{"2019-06-30", "2018-06-30"}
                                       << QVariant(2025.0);

    QTest::newRow("number from text") << evening << "ToDecimal" << QVariantList{"-3.25"} << QVariant(-3.25);
    QTest::newRow("number from number") << evening << "todecimal" << QVariantList{7} << QVariant(7.0);
    QTest::newRow("number with separator") << evening << "todecimal" << QVariantList{"1,000"} << QVariant(0.0);
    QTest::newRow("number from a word") << evening << "todecimal" << QVariantList{"x"} << QVariant(0.0);
    QTest::newRow("number of nothing") << evening << "todecimal" << QVariantList{} << QVariant(0.0);
    QTest::newRow("number of two") << evening << "todecimal" << QVariantList{"1", "2"} << QVariant(0.0);
}

void tst_TFCustomMath::callFunction()
{
    QFETCH(QDateTime, now);
    QFETCH(QString, name);
    QFETCH(QVariantList, args);
    QFETCH(QVariant, expected);
    setNow(now);
    QCOMPARE(typed(call(name, args)), typed(expected));
}

void tst_TFCustomMath::serviceDate_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<qint64>("msecs");            // -1: no date
    QTest::addColumn<int>("offsetHours");

    QTest::newRow("china") << "/Date(1596124800000+0800)" << Q_INT64_C(1596124800000) << 8;
    QTest::newRow("new york") << "/Date(1596124800000-0500)" << Q_INT64_C(1596124800000) << -5;
    // Only the hours of the offset count.
    QTest::newRow("half hour dropped") << "/Date(1596124800000+0530)" << Q_INT64_C(1596124800000) << 5;
    QTest::newRow("before the epoch") << "/Date(-86400000+0000)" << Q_INT64_C(-86400000) << 0;
    QTest::newRow("filter date form") << "date'2019-01-01'" << Q_INT64_C(-1) << 0;
    QTest::newRow("empty") << "" << Q_INT64_C(-1) << 0;
}

void tst_TFCustomMath::serviceDate()
{
    QFETCH(QString, text);
    QFETCH(qint64, msecs);
    QFETCH(int, offsetHours);
    const QDateTime date = TFCustomMath::dateFromServiceText(text);
    QCOMPARE(date.isValid(), msecs != -1);
    if (date.isValid()) {
        QCOMPARE(date.toMSecsSinceEpoch(), msecs);
        QCOMPARE(date.offsetFromUtc(), offsetHours * 3600);
    }
}

void tst_TFCustomMath::systemClockByDefault()
{
    const QDateTime before = QDateTime::currentDateTime();
    const QDateTime now = TFCustomMath::instance()->now();
    QVERIFY(before <= now && now <= QDateTime::currentDateTime());
    setNow(at(2001, 9, 9));
    QCOMPARE(TFCustomMath::instance()->now().date(), QDate(2001, 9, 9));
    TFCustomMath::instance()->setClock({});
    QVERIFY(TFCustomMath::instance()->now().date().year() > 2001);
}

QTEST_GUILESS_MAIN(tst_TFCustomMath)
#include "tst_tfcustommath.moc"
