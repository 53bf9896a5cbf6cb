#include <QtTest>

#include "expression/tfcustommath.h"

// The service writes dates as "/Date(<ms since epoch><sign><hh><mm>)".
static QString serviceText(const QDate &date, int offsetHours = 8, const QTime &time = QTime(0, 0))
{
    const QDateTime dateTime(date, time, Qt::OffsetFromUTC, offsetHours * 3600);
    return QStringLiteral("/Date(%1%2%3)")
        .arg(dateTime.toMSecsSinceEpoch())
        .arg(offsetHours < 0 ? QLatin1Char('-') : QLatin1Char('+'))
        .arg(qAbs(offsetHours) * 100, 4, 10, QLatin1Char('0'));
}

static QVariant call(const QString &name, const QList<QVariant> &args = {})
{
    QVariant result;
    if (!TFCustomMath::instance()->callFunction(name, args, result))
        return QStringLiteral("<unknown>");
    return result;
}

class tst_TFCustomMath : public QObject
{
    Q_OBJECT

private:
    void setToday(const QDateTime &now)
    {
        TFCustomMath::instance()->setClock([now] { return now; });
    }
    void setToday(const QDate &date) { setToday(QDateTime(date, QTime(12, 0))); }

private slots:
    void cleanup() { TFCustomMath::instance()->setClock({}); }

    void reportCalendar_data();
    void reportCalendar();
    void quarterEndIsMidnight();
    void shiftedToday_data();
    void shiftedToday();
    void today_data();
    void today();
    void yearsBetweenDates_data();
    void yearsBetweenDates();
    void datesBetweenDates_data();
    void datesBetweenDates();
    void yearsOfTwoDates_data();
    void yearsOfTwoDates();
    void yearOf_data();
    void yearOf();
    void toDecimal_data();
    void toDecimal();
    void serviceDate_data();
    void serviceDate();
    void names_data();
    void names();
    void unknownNameLeavesResultAlone();
    void systemClockByDefault();
};

// The latest annual report moves on 1 May; the latest quarter end moves on
// the first day of January, April, July and October. The day of the month
// and the time of day play no part.
void tst_TFCustomMath::reportCalendar_data()
{
    QTest::addColumn<QDateTime>("now");
    QTest::addColumn<QString>("annual");
    QTest::addColumn<QString>("quarter");

    auto row = [](const char *name, const QDate &date, const QTime &time, const char *annual,
                  const char *quarter) {
        QTest::newRow(name) << QDateTime(date, time) << QString::fromLatin1(annual)
                            << QString::fromLatin1(quarter);
    };
    const QTime noon(12, 0);
    row("new year's eve", QDate(2025, 12, 31), QTime(23, 59, 59), "2024-12-31", "2025-09-30");
    row("new year's day", QDate(2026, 1, 1), QTime(0, 0), "2024-12-31", "2025-12-31");
    row("last of March", QDate(2026, 3, 31), QTime(23, 59, 59), "2024-12-31", "2025-12-31");
    row("first of April", QDate(2026, 4, 1), QTime(0, 0), "2024-12-31", "2026-03-31");
    row("last of April, late", QDate(2026, 4, 30), QTime(23, 59, 59), "2024-12-31", "2026-03-31");
    row("first of May, early", QDate(2026, 5, 1), QTime(0, 0), "2025-12-31", "2026-03-31");
    row("last of June", QDate(2026, 6, 30), noon, "2025-12-31", "2026-03-31");
    row("first of July", QDate(2026, 7, 1), noon, "2025-12-31", "2026-06-30");
    row("last of September", QDate(2026, 9, 30), noon, "2025-12-31", "2026-06-30");
    // No report of the third quarter exists yet on 1 October; the date
    // answers anyway.
    row("first of October", QDate(2026, 10, 1), noon, "2025-12-31", "2026-09-30");
    row("leap day", QDate(2024, 2, 29), noon, "2022-12-31", "2023-12-31");
    row("leap year, last of April", QDate(2028, 4, 30), noon, "2026-12-31", "2028-03-31");
    row("leap year, first of May", QDate(2028, 5, 1), noon, "2027-12-31", "2028-03-31");
    row("turn of the century", QDate(2000, 1, 15), noon, "1998-12-31", "1999-12-31");
}

void tst_TFCustomMath::reportCalendar()
{
    QFETCH(QDateTime, now);
    QFETCH(QString, annual);
    QFETCH(QString, quarter);
    setToday(now);

    const QVariant annualResult = call(QStringLiteral("getlastedyearreport"));
    QCOMPARE(annualResult.userType(), int(QMetaType::QString));
    QCOMPARE(annualResult.toString(), annual);
    // Whatever arguments come, they are ignored.
    QCOMPARE(call(QStringLiteral("getlastedyearreport"), { QStringLiteral("x"), 3 }).toString(), annual);

    const QVariant quarterResult = call(QStringLiteral("fndgetlatestquarterlyreport"));
    QCOMPARE(quarterResult.userType(), int(QMetaType::QDateTime));
    QCOMPARE(quarterResult.toDateTime().date().toString(Qt::ISODate), quarter);
    const QVariant phaseResult = call(QStringLiteral("fndgetlatestphaseyearreport"), { 1 });
    QCOMPARE(phaseResult.toDateTime(), quarterResult.toDateTime());
}

void tst_TFCustomMath::quarterEndIsMidnight()
{
    setToday(QDateTime(QDate(2026, 8, 17), QTime(15, 45, 12)));
    const QDateTime end = call(QStringLiteral("fndgetlatestquarterlyreport")).toDateTime();
    QCOMPARE(end, QDateTime(QDate(2026, 6, 30), QTime(0, 0)));
}

void tst_TFCustomMath::shiftedToday_data()
{
    QTest::addColumn<QDate>("today");
    QTest::addColumn<QString>("function");
    QTest::addColumn<QVariantList>("args");
    QTest::addColumn<QString>("expected");

    QTest::newRow("yesterday") << QDate(2026, 5, 1) << "adddays" << QVariantList{ "-1" } << "2026-04-30";
    QTest::newRow("into leap day") << QDate(2024, 3, 1) << "adddays" << QVariantList{ "-1" } << "2024-02-29";
    QTest::newRow("no leap day") << QDate(2026, 3, 1) << "adddays" << QVariantList{ "-1" } << "2026-02-28";
    QTest::newRow("over year end") << QDate(2025, 12, 31) << "adddays" << QVariantList{ "1" } << "2026-01-01";
    QTest::newRow("thirty days back") << QDate(2026, 1, 15) << "adddays" << QVariantList{ "-30" } << "2025-12-16";
    QTest::newRow("integer argument") << QDate(2026, 1, 15) << "adddays" << QVariantList{ 2 } << "2026-01-17";
    QTest::newRow("day zero") << QDate(2026, 1, 15) << "adddays" << QVariantList{ "0" } << "2026-01-15";
    QTest::newRow("no argument") << QDate(2026, 1, 15) << "adddays" << QVariantList{} << "";
    QTest::newRow("not a number") << QDate(2026, 1, 15) << "adddays" << QVariantList{ "x" } << "";
    QTest::newRow("not an integer") << QDate(2026, 1, 15) << "adddays" << QVariantList{ "1.5" } << "";
    QTest::newRow("two arguments") << QDate(2026, 1, 15) << "adddays" << QVariantList{ "1", "2" } << "";
    QTest::newRow("month end clamps") << QDate(2026, 1, 31) << "addmonths" << QVariantList{ "1" } << "2026-02-28";
    QTest::newRow("month end, leap year") << QDate(2024, 1, 31) << "addmonths" << QVariantList{ "1" } << "2024-02-29";
    QTest::newRow("month back over year end") << QDate(2026, 1, 31) << "addmonths" << QVariantList{ "-2" } << "2025-11-30";
    QTest::newRow("month, no argument") << QDate(2026, 1, 31) << "addmonths" << QVariantList{} << "";
    QTest::newRow("leap day plus a year") << QDate(2024, 2, 29) << "addyears" << QVariantList{ "1" } << "2025-02-28";
    QTest::newRow("leap day plus four years") << QDate(2024, 2, 29) << "addyears" << QVariantList{ "4" } << "2028-02-29";
    QTest::newRow("a year back") << QDate(2026, 4, 30) << "addyears" << QVariantList{ "-1" } << "2025-04-30";
    QTest::newRow("year, not a number") << QDate(2026, 4, 30) << "addyears" << QVariantList{ "one" } << "";
}

void tst_TFCustomMath::shiftedToday()
{
    QFETCH(QDate, today);
    QFETCH(QString, function);
    QFETCH(QVariantList, args);
    QFETCH(QString, expected);
    setToday(QDateTime(today, QTime(23, 30)));

    const QVariant result = call(function, args);
    QCOMPARE(result.userType(), int(QMetaType::QString));
    QCOMPARE(result.toString(), expected);
}

void tst_TFCustomMath::today_data()
{
    QTest::addColumn<QVariantList>("args");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no argument") << QVariantList{} << "2024-02-29";
    // Strict: any argument at all, even an empty one, is refused.
    QTest::newRow("empty argument") << QVariantList{ QString() } << "";
    QTest::newRow("one argument") << QVariantList{ "0" } << "";
}

void tst_TFCustomMath::today()
{
    QFETCH(QVariantList, args);
    QFETCH(QString, expected);
    setToday(QDateTime(QDate(2024, 2, 29), QTime(0, 0, 1)));
    QCOMPARE(call(QStringLiteral("today"), args).toString(), expected);
}

void tst_TFCustomMath::yearsBetweenDates_data()
{
    QTest::addColumn<QVariantList>("args");
    QTest::addColumn<QString>("expected");

    const QString d2019 = serviceText(QDate(2019, 3, 1));
    const QString d2021 = serviceText(QDate(2021, 11, 30));
    QTest::newRow("forward") << QVariantList{ d2019, d2021 } << "2019,2020,2021";
    QTest::newRow("backward") << QVariantList{ d2021, d2019 } << "2021,2020,2019";
    QTest::newRow("same year") << QVariantList{ d2019, serviceText(QDate(2019, 12, 31)) } << "2019";
    QTest::newRow("from leap day")
        << QVariantList{ serviceText(QDate(2020, 2, 29)), serviceText(QDate(2023, 1, 1)) }
        << "2020,2021,2022,2023";
    // The year is read in the offset of the text: midnight of New Year in
    // China is still the old year in UTC.
    QTest::newRow("new year in the text's zone")
        << QVariantList{ serviceText(QDate(2020, 1, 1)), serviceText(QDate(2021, 1, 1)) } << "2020,2021";
    QTest::newRow("new year's eve in the text's zone")
        << QVariantList{ serviceText(QDate(2019, 12, 31), 8, QTime(23, 59)), serviceText(QDate(2021, 1, 1)) }
        << "2019,2020,2021";
    QTest::newRow("one date") << QVariantList{ d2019 } << "";
    QTest::newRow("three dates") << QVariantList{ d2019, d2021, d2019 } << "";
    // The form of filter defaults is no date here; it is dropped, so only
    // one date remains.
    QTest::newRow("filter date form") << QVariantList{ "date'2019-01-01'", d2021 } << "";
    QTest::newRow("empty text") << QVariantList{ QString(), d2021 } << "";
}

void tst_TFCustomMath::yearsBetweenDates()
{
    QFETCH(QVariantList, args);
    QFETCH(QString, expected);
    QCOMPARE(call(QStringLiteral("getyearsbetrweemdate"), args).toString(), expected);
}

void tst_TFCustomMath::datesBetweenDates_data()
{
    QTest::addColumn<QVariantList>("args");
    QTest::addColumn<QString>("expected");

    QTest::newRow("over leap day")
        << QVariantList{ serviceText(QDate(2020, 2, 27)), serviceText(QDate(2020, 3, 1)) }
        << "2020-02-27,2020-02-28,2020-02-29,2020-03-01";
    QTest::newRow("over year end")
        << QVariantList{ serviceText(QDate(2025, 12, 31)), serviceText(QDate(2026, 1, 1)) }
        << "2025-12-31,2026-01-01";
    QTest::newRow("one day")
        << QVariantList{ serviceText(QDate(2026, 4, 30)), serviceText(QDate(2026, 4, 30), 8, QTime(18, 0)) }
        << "2026-04-30";
    QTest::newRow("later date first")
        << QVariantList{ serviceText(QDate(2026, 5, 1)), serviceText(QDate(2026, 4, 30)) } << "";
    QTest::newRow("one date") << QVariantList{ serviceText(QDate(2026, 5, 1)) } << "";
}

void tst_TFCustomMath::datesBetweenDates()
{
    QFETCH(QVariantList, args);
    QFETCH(QString, expected);
    QCOMPARE(call(QStringLiteral("getdatesbetrweemdate"), args).toString(), expected);
}

void tst_TFCustomMath::yearsOfTwoDates_data()
{
    QTest::addColumn<QVariantList>("args");
    QTest::addColumn<QString>("expected");

    QTest::newRow("two dates")
        << QVariantList{ serviceText(QDate(2019, 1, 1)), serviceText(QDate(2021, 6, 30)) } << "2019,2021";
    QTest::newRow("reversed")
        << QVariantList{ serviceText(QDate(2021, 6, 30)), serviceText(QDate(2019, 1, 1)) } << "2021,2019";
    QTest::newRow("none") << QVariantList{} << "2026,2026";
    QTest::newRow("filter date form")
        << QVariantList{ "date'2019-01-01'", "date'2020-01-01'" } << "2026,2026";
    QTest::newRow("three dates")
        << QVariantList{ serviceText(QDate(2019, 1, 1)), serviceText(QDate(2020, 1, 1)),
                         serviceText(QDate(2021, 1, 1)) }
        << "2026,2026";
}

void tst_TFCustomMath::yearsOfTwoDates()
{
    QFETCH(QVariantList, args);
    QFETCH(QString, expected);
    setToday(QDate(2026, 1, 1));
    QCOMPARE(call(QStringLiteral("ofbetweenyear"), args).toString(), expected);
}

void tst_TFCustomMath::yearOf_data()
{
    QTest::addColumn<QVariantList>("args");
    QTest::addColumn<double>("expected");

    QTest::newRow("none") << QVariantList{} << 2025.0;
    QTest::newRow("iso date") << QVariantList{ "2019-06-30" } << 2019.0;
    QTest::newRow("inside other text") << QVariantList{ "date'2018-1-1'" } << 2018.0;
    QTest::newRow("no date") << QVariantList{ "2019" } << 2025.0;
    QTest::newRow("year too long") << QVariantList{ "99999999999-1-1" } << 2025.0;
    QTest::newRow("two arguments") << QVariantList{ "2019-06-30", "2018-06-30" } << 2025.0;
}

void tst_TFCustomMath::yearOf()
{
    QFETCH(QVariantList, args);
    QFETCH(double, expected);
    setToday(QDateTime(QDate(2025, 12, 31), QTime(23, 59, 59)));

    const QVariant result = call(QStringLiteral("ofyear"), args);
    QCOMPARE(result.userType(), int(QMetaType::Double));
    QCOMPARE(result.toDouble(), expected);
}

void tst_TFCustomMath::toDecimal_data()
{
    QTest::addColumn<QVariantList>("args");
    QTest::addColumn<double>("expected");

    QTest::newRow("text") << QVariantList{ "3.25" } << 3.25;
    QTest::newRow("negative") << QVariantList{ "-12" } << -12.0;
    QTest::newRow("number") << QVariantList{ 7 } << 7.0;
    QTest::newRow("thousands separator") << QVariantList{ "1,000" } << 0.0;
    QTest::newRow("word") << QVariantList{ "x" } << 0.0;
    QTest::newRow("none") << QVariantList{} << 0.0;
    QTest::newRow("two") << QVariantList{ "1", "2" } << 0.0;
}

void tst_TFCustomMath::toDecimal()
{
    QFETCH(QVariantList, args);
    QFETCH(double, expected);
    const QVariant result = call(QStringLiteral("todecimal"), args);
    QCOMPARE(result.userType(), int(QMetaType::Double));
    QCOMPARE(result.toDouble(), expected);
}

void tst_TFCustomMath::serviceDate_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<qint64>("msecs");
    QTest::addColumn<int>("offsetSeconds");

    QTest::newRow("china") << "/Date(1596124800000+0800)" << true << Q_INT64_C(1596124800000) << 8 * 3600;
    QTest::newRow("new york") << "/Date(1596124800000-0500)" << true << Q_INT64_C(1596124800000) << -5 * 3600;
    // Only the hours of the offset count.
    QTest::newRow("half hour dropped") << "/Date(1596124800000+0530)" << true << Q_INT64_C(1596124800000) << 5 * 3600;
    QTest::newRow("before the epoch") << "/Date(-86400000+0000)" << true << Q_INT64_C(-86400000) << 0;
    QTest::newRow("filter date form") << "date'2019-01-01'" << false << Q_INT64_C(0) << 0;
    QTest::newRow("empty") << "" << false << Q_INT64_C(0) << 0;
}

void tst_TFCustomMath::serviceDate()
{
    QFETCH(QString, text);
    QFETCH(bool, valid);
    QFETCH(qint64, msecs);
    QFETCH(int, offsetSeconds);

    const QDateTime date = TFCustomMath::dateFromServiceText(text);
    QCOMPARE(date.isValid(), valid);
    if (!valid)
        return;
    QCOMPARE(date.toMSecsSinceEpoch(), msecs);
    QCOMPARE(date.offsetFromUtc(), offsetSeconds);
}

void tst_TFCustomMath::names_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("type");

    QTest::newRow("misspelled name, mixed case") << "getYearsBetrweemDate" << int(QMetaType::QString);
    QTest::newRow("blanks") << " get Years\tBetrweem Date " << int(QMetaType::QString);
    QTest::newRow("upper case") << "TODAY" << int(QMetaType::QString);
    QTest::newRow("number table") << "ToDecimal" << int(QMetaType::Double);
    QTest::newRow("date table") << "fndGetLatestPhaseYearReport" << int(QMetaType::QDateTime);
}

void tst_TFCustomMath::names()
{
    QFETCH(QString, name);
    QFETCH(int, type);
    QVariant result;
    QVERIFY(TFCustomMath::instance()->callFunction(name, {}, result));
    QCOMPARE(result.userType(), type);
}

void tst_TFCustomMath::unknownNameLeavesResultAlone()
{
    QVariant result(42);
    QVERIFY(!TFCustomMath::instance()->callFunction(QStringLiteral("round"), { "1.5" }, result));
    QCOMPARE(result, QVariant(42));
    // The misspelling is the name; the correct spelling is unknown.
    QVERIFY(!TFCustomMath::instance()->callFunction(QStringLiteral("getYearsBetweenDate"), {}, result));
}

void tst_TFCustomMath::systemClockByDefault()
{
    const QDateTime before = QDateTime::currentDateTime();
    const QDateTime now = TFCustomMath::instance()->now();
    const QDateTime after = QDateTime::currentDateTime();
    QVERIFY(before <= now && now <= after);

    setToday(QDate(2001, 9, 9));
    QCOMPARE(TFCustomMath::instance()->now().date(), QDate(2001, 9, 9));
    TFCustomMath::instance()->setClock({});
    QVERIFY(TFCustomMath::instance()->now().date().year() > 2001);
}

QTEST_GUILESS_MAIN(tst_TFCustomMath)
#include "tst_tfcustommath.moc"
