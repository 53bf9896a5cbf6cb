#include "filterrow.h"

#include "expression/tfcustommath.h"
#include "filterwidget/tfmultiyear.h"
#include "filterwidget/tfreportdatesimple.h"
#include "filterwidget/tfyearmonthinterval.h"
#include "filterwidget/tfyearmonthsimple.h"

#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QMenu>
#include <QToolButton>
#include <QtTest>

#include <ctime>

namespace {

QStringList itemsOf(const QComboBox *box)
{
    QStringList texts;
    for (int i = 0; i < box->count(); ++i)
        texts.append(box->itemText(i));
    return texts;
}

// The years a list offers by default: this year of the fixed clock (2024)
// down to the first.
QStringList yearsDownTo(int last)
{
    QStringList years;
    for (int year = 2024; year >= last; --year)
        years.append(QString::number(year) + "年");
    return years;
}

} // namespace

class tst_PeriodControls : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();

    void multiYear_data();
    void multiYear();
    void reportDate_data();
    void reportDate();
    void yearMonthInterval_data();
    void yearMonthInterval();
    void yearMonthSimple_data();
    void yearMonthSimple();
};

void tst_PeriodControls::initTestCase()
{
    // Report dates go out as local midnight with the zone's offset.
    qputenv("TZ", "Asia/Shanghai");
    tzset();
    TFCustomMath::instance()->setClock([] { return QDateTime(QDate(2024, 7, 15), QTime(10, 0)); });
}

void tst_PeriodControls::cleanupTestCase()
{
    TFCustomMath::instance()->setClock({});
}

void tst_PeriodControls::multiYear_data()
{
    QTest::addColumn<QString>("row");
    QTest::addColumn<QStringList>("clicks");       // menu entries triggered in turn
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("op");

    const QString single = R"("ClassName":"SimpleYear","FieldName":"YEAR","Operator":">=","ValueType":"decimal")";
    const QString multiple = R"("ClassName":"MultYear","FieldName":"YEAR","Operator":"=","ValueType":"string")";
    QTest::newRow("pairs; the first is the default")
        << "{" + single + R"(,"NameValues":"2019年=1;2020年=2"})" << QStringList() << QStringList{"2019年", "2020年"}
        << "2019年" << QVariant("2019") << ">=";
    QTest::newRow("no list: this year down to 1999") << "{" + single + "}" << QStringList() << yearsDownTo(1999)
                                                     << "2024年" << QVariant("2024") << ">=";
    QTest::newRow("a default counts by its first four characters")
        << "{" + single + R"(,"DefualtValue":"=2018-05-31"})" << QStringList() << yearsDownTo(1999) << "2018年"
        << QVariant("2018") << ">=";
    QTest::newRow("a choice replaces the text") << "{" + single + "}" << QStringList{"2021年"} << yearsDownTo(1999)
                                                << "2021年" << QVariant("2021") << ">=";
    QTest::newRow("two date bounds leave the menu empty")
        << "{" + single + R"(,"NameValues":"=date'2019-01-01';=date'2021-06-30'"})" << QStringList() << QStringList()
        << "" << QVariant("") << ">=";
    QTest::newRow("two function bounds leave the menu empty")
        << "{" + single + R"x(,"NameValues":"$addyears(-3);$addyears(0)"})x" << QStringList() << QStringList() << ""
        << QVariant("") << ">=";
    QTest::newRow("one bound is no range: the default years")
        << "{" + single + R"(,"NameValues":"=date'2019-01-01'"})" << QStringList() << yearsDownTo(1999) << "2024年"
        << QVariant("2024") << ">=";
    QTest::newRow("many: the default is ticked") << "{" + multiple + R"(,"DefualtValue":"=2020"})" << QStringList()
                                                 << yearsDownTo(1999) << "2020年" << QVariant(QStringList{"2020"})
                                                 << "in";
    QTest::newRow("many: ticks in the order of choosing")
        << "{" + multiple + R"(,"DefualtValue":"=2020"})" << QStringList{"2022年", "2019年", "2020年"}
        << yearsDownTo(1999) << "2022年;2019年" << QVariant(QStringList{"2022", "2019"}) << "in";
    QTest::newRow("many: nothing chosen reports an empty list")
        << "{" + multiple + R"(,"DefualtValue":"=1900"})" << QStringList() << yearsDownTo(1999) << ""
        << QVariant(QStringList()) << "in";
}

void tst_PeriodControls::multiYear()
{
    QFETCH(QString, row);
    QFETCH(QStringList, clicks);
    QFETCH(QStringList, entries);
    QFETCH(QString, button);
    QFETCH(QVariant, value);
    QFETCH(QString, op);

    const TFTableModelData::FilterData data = filterRow(row);
    TFMultiYear control(data, data.ClassName == "MultYear");
    QCOMPARE(control.entries().values(), entries);
    QCOMPARE(control.menu()->actions().size(), entries.size());
    for (const QString &click : qAsConst(clicks)) {
        QAction *action = control.menu()->actions().value(entries.indexOf(click));
        QVERIFY2(action, qPrintable(click));
        action->trigger();
    }
    QCOMPARE(control.button()->text(), button);
    QCOMPARE(control.button()->width(), 100);
    const FilterParam::Cntrl cntrl = control.getCntrl();
    QCOMPARE(cntrl.value, value);
    QCOMPARE(cntrl.op, op);
    QCOMPARE(cntrl.key, QStringLiteral("YEAR"));
    QVERIFY(!cntrl.multiField);
    QCOMPARE(cntrl.valueType, control.isMultiple() ? QStringLiteral("stringList") : data.ValueType);
}

void tst_PeriodControls::reportDate_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("nameValues");
    QTest::addColumn<QString>("defaultValue");
    QTest::addColumn<QString>("category");
    QTest::addColumn<QString>("year");
    QTest::addColumn<QStringList>("periods");
    QTest::addColumn<QString>("period");
    QTest::addColumn<QString>("value");

    const QStringList half{"半年报", "年度"};
    const QStringList quarters{"一季度", "二季度", "三季度", "四季度"};
    const QStringList common{"一季度", "半年报", "三季度", "年度"};
    QTest::newRow("half year selected") << "ReportDateSimple5" << "" << "=date'2019-06-30'" << "1" << "2019年" << half
                                        << "半年报" << "2019-06-30";
    QTest::newRow("a month no period ends in selects nothing")
        << "ReportDateSimple5" << "" << "=date'2019-03-31'" << "1" << "2019年" << half << "半年报" << "2019-06-30";
    QTest::newRow("third quarter") << "ReportDateSimple2" << "" << "=date'2019-09-30'" << "1" << "2019年" << quarters
                                   << "三季度" << "2019-09-30";
    QTest::newRow("december: the first period of twelve months")
        << "ReportDateSimple2" << "" << "=date'2018-12-31'" << "1" << "2018年" << quarters << "四季度" << "2018-12-31";
    QTest::newRow("any other class") << "ReportDateSimple" << "" << "=date'2019-12-31'" << "1" << "2019年" << common
                                     << "年度" << "2019-12-31";
    QTest::newRow("service date text") << "ReportDateSimple5" << "" << "=date'2019-06-30'" << "2" << "2019年" << half
                                       << "半年报" << "/Date(1561824000000+0800)";
    QTest::newRow("other category: empty") << "ReportDateSimple5" << "" << "=date'2019-06-30'" << "0" << "2019年"
                                           << half << "半年报" << "";
    QTest::newRow("unreadable date: first entries") << "ReportDateSimple2" << "" << "=date'2019-13-01'" << "1"
                                                    << "2024年" << quarters << "一季度" << "2024-03-31";
    QTest::newRow("function default is worked out, not applied")
        << "ReportDateSimple2" << "" << "=$fndgetlatestquarterlyreport()" << "1" << "2024年" << quarters << "一季度"
        << "2024-03-31";
    QTest::newRow("pairs fill both boxes; an unknown period is the year before")
        << "ReportDateSimple5" << "2019年=2019;2020年=2020;;=x" << "" << "1" << "2019年"
        << QStringList{"2019年", "2020年", "半年报", "年度"} << "2019年" << "2018-12-31";
}

void tst_PeriodControls::reportDate()
{
    QFETCH(QString, className);
    QFETCH(QString, nameValues);
    QFETCH(QString, defaultValue);
    QFETCH(QString, category);
    QFETCH(QString, year);
    QFETCH(QStringList, periods);
    QFETCH(QString, period);
    QFETCH(QString, value);

    TFTableModelData::FilterData data;
    data.ClassName = className;
    data.FieldName = QStringLiteral("END_DATE");
    data.Operator = QStringLiteral("<=");
    data.Caption = QStringLiteral("报告期");
    data.NameValues = nameValues;
    data.DefualtValue = defaultValue;
    data.ParameterCategory = category;
    TFReportDateSimple control(data);
    QCOMPARE(itemsOf(control.yearBox()), (nameValues.isEmpty() ? yearsDownTo(1992) : QStringList{"2019年", "2020年"}));
    QCOMPARE(itemsOf(control.periodBox()), periods);
    QCOMPARE(control.yearBox()->currentText(), year);
    QCOMPARE(control.periodBox()->currentText(), period);
    QCOMPARE(control.label()->text(), QStringLiteral("报告期"));
    const FilterParam::Cntrl cntrl = control.getCntrl();
    QCOMPARE(cntrl.value, QVariant(value));
    QCOMPARE(cntrl.op, QStringLiteral("<="));
    QCOMPARE(cntrl.key, QStringLiteral("END_DATE"));
    QVERIFY(cntrl.valueType.isEmpty());
}

void tst_PeriodControls::yearMonthInterval_data()
{
    QTest::addColumn<QString>("nameValues");
    QTest::addColumn<int>("width");
    QTest::addColumn<QStringList>("choice");       // start year, start month, end year, end month; empty: as built
    QTest::addColumn<QString>("value");

    QTest::newRow("as built: the first entries") << "" << 70 << QStringList() << "'2024-1','2024-1'";
    QTest::newRow("chosen range") << "" << 70 << QStringList{"2019年", "1月", "2020年", "12月"}
                                  << "'2019-1','2020-12'";
    QTest::newRow("listed years, no width") << "2019;2018" << 0 << QStringList() << "'2019-1','2019-1'";
}

void tst_PeriodControls::yearMonthInterval()
{
    QFETCH(QString, nameValues);
    QFETCH(int, width);
    QFETCH(QStringList, choice);
    QFETCH(QString, value);

    TFTableModelData::FilterData data;
    data.ClassName = QStringLiteral("YearMonthInterval");
    data.FieldName = QStringLiteral("IGNORED");
    data.ValueType = QStringLiteral("YM");
    data.Caption = QStringLiteral("月份区间");
    data.NameValues = nameValues;
    data.Width = width;
    TFYearMonthInterval control(data);
    const QList<QComboBox *> boxes{control.startYear(), control.startMonth(), control.endYear(), control.endMonth()};
    QCOMPARE(itemsOf(control.startYear()), nameValues.isEmpty() ? yearsDownTo(1999) : nameValues.split(';'));
    QCOMPARE(itemsOf(control.endMonth()).size(), 12);
    for (int i = 0; i < boxes.size(); ++i) {
        QCOMPARE(boxes.at(i)->maximumWidth(), width);
        if (!choice.isEmpty())
            boxes.at(i)->setCurrentText(choice.at(i));
    }
    const FilterParam::Cntrl cntrl = control.getCntrl();
    QCOMPARE(cntrl.value, QVariant(value));
    QCOMPARE(cntrl.key, QStringLiteral("YM"));
    QCOMPARE(cntrl.op, QStringLiteral(">=,<="));
    QVERIFY(cntrl.multiField);
    QVERIFY(cntrl.valueType.isEmpty());
}

void tst_PeriodControls::yearMonthSimple_data()
{
    QTest::addColumn<QString>("defaultValue");
    QTest::addColumn<QString>("value");

    QTest::newRow("date default") << "=date'2019-03-15'" << "201903";
    QTest::newRow("plain date") << "2020-11-01" << "202011";
    QTest::newRow("no default: first entries") << "" << "202401";
    QTest::newRow("unreadable: first entries") << "2019-3-1" << "202401";
    QTest::newRow("out of the list: first entries") << "=date'1980-05-01'" << "202405";
}

void tst_PeriodControls::yearMonthSimple()
{
    QFETCH(QString, defaultValue);
    QFETCH(QString, value);

    TFTableModelData::FilterData data;
    data.ClassName = QStringLiteral("YearMonthSimple");
    data.FieldName = QStringLiteral("YM");
    data.Operator = QStringLiteral(">=");
    data.ValueType = QStringLiteral("string");
    data.DefualtValue = defaultValue;
    TFYearMonthSimple control(data);
    QCOMPARE(itemsOf(control.yearBox()), yearsDownTo(1992));
    const FilterParam::Cntrl cntrl = control.getCntrl();
    QCOMPARE(cntrl.value, QVariant(value));
    QCOMPARE(cntrl.op, QStringLiteral(">="));
    QCOMPARE(cntrl.valueType, QStringLiteral("string"));
}

QTEST_MAIN(tst_PeriodControls)
#include "tst_periodcontrols.moc"
