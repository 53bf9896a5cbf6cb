#include "filterwidget/tfbasefilterwidget.h"
#include "filterwidget/tffilterwidget.h"
#include "jsonparser/tffilterjsontable.h"
#include "../shared/stubview.h"
#include "tfbaseview.h"
#include "tfframesubjectzhp.h"
#include "tfsubjectmainframe.h"

#include "expression/tfcustommath.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLayout>
#include <QLineEdit>
#include <QtTest>

// A composite screen's object as a frame reads it: the global arguments.
class ScreenArgs : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QVariantMap args MEMBER args)
public:
    QVariantMap args;
signals:
    void argsChanged(const QVariantMap &args);
};

namespace {

// The rows of a configuration's "filters" entry, as the view reads them.
QList<TFTableModelData::FilterData> rows(const char *json)
{
    TFFilterJsonTable table;
    table.initWith(QJsonValue(QString::fromUtf8(json)));
    return table.filters();
}

QString compact(const QJsonValue &value)
{
    const QString text = QString::fromUtf8(QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact));
    return text.mid(1, text.size() - 2);
}

// Both lists as compact JSON: [[key,value],...] and [[field,param,op,[values]],...].
QString describe(const QList<FilterParam::DataSourceFilter> &params, const QList<FilterParam::CustomFilter> &filters)
{
    QJsonArray p;
    for (const FilterParam::DataSourceFilter &param : params)
        p.append(QJsonArray{param.key, QJsonValue::fromVariant(param.value)});
    QJsonArray f;
    for (const FilterParam::CustomFilter &filter : filters)
        f.append(QJsonArray{filter.fieldName, filter.paramName, filter.op, QJsonArray::fromVariantList(filter.values)});
    return compact(p) + QLatin1Char(' ') + compact(f);
}

QString finalFilterOf(TFFilterWidget &bar)
{
    QList<FilterParam::DataSourceFilter> params;
    QList<FilterParam::CustomFilter> filters;
    bar.finalFilter(params, filters);
    return describe(params, filters);
}

// A child view as far as its filters go: its rows are what the test gives.
using ChildView = StubView;

} // namespace

class tst_TFFilterWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void finalFilter_data();
    void finalFilter();
    void rebuildLeavesOnlyTheNewControls();
    void childViewTakesTheBarsValues();
};

void tst_TFFilterWidget::initTestCase()
{
    TFCustomMath::instance()->setClock([] { return QDateTime(QDate(2024, 6, 15), QTime(9, 0)); });
}

void tst_TFFilterWidget::cleanupTestCase()
{
    TFCustomMath::instance()->setClock(TFCustomMath::Clock());
}

// What the bar hands to a request, from its rows and from the arguments of
// the screen (global) and of the page (F9) it sits in.
void tst_TFFilterWidget::finalFilter_data()
{
    QTest::addColumn<QByteArray>("config");
    QTest::addColumn<QVariantMap>("global");
    QTest::addColumn<QVariantMap>("f9");
    QTest::addColumn<QString>("expected");
    const QVariantMap none;

    QTest::newRow("no rows") << QByteArray("[]") << none << none << "[] []";
    QTest::newRow("keywords are a parameter")
        << QByteArray(R"J([{"ClassName":"KeywordsBox","Operator":"LIKE","ValueType":"string","ParameterCategory":1}])J") << none << none
        << R"J([["keywords",""]] [])J";
    QTest::newRow("keywords without category still a parameter")
        << QByteArray(R"J([{"ClassName":"TextEdit","ValueType":"string","DefualtValue":"平安"}])J") << none << none << R"J([["keywords","平安"]] [])J";
    QTest::newRow("date range: two entries, _0 and _1")
        << QByteArray(R"J([{"ClassName":"DateTimeInterval","FieldName":"T","ValueType":"DateTime","DefualtValue":"=date'2024-01-01';=date'2024-03-31'"}])J")
        << none << none << R"J([] [["T","T_0",">=",["[2024-01-01 00:00:00]"]],["T","T_1","<=",["[2024-03-31 23:59:59]"]]])J";
    QTest::newRow("number range")
        << QByteArray(R"J([{"ClassName":"DecimalTextEditInterval","FieldName":"P","ValueType":"decimal","DefualtValue":"-5;5"}])J") << none << none
        << R"J([] [["P","P_0",">=",[-5]],["P","P_1","<=",[5]]])J";
    QTest::newRow("parameter of the data source")
        << QByteArray(R"J([{"ClassName":"VirtualCntrl","FieldName":"SECU_ID","Operator":"=","ValueType":"decimal","DefualtValue":"=12","ParameterCategory":1}])J")
        << none << none << R"J([["SECU_ID",12]] [])J";
    QTest::newRow("first row of the field decides: a label row")
        << QByteArray(R"J([{"ClassName":"LabelControl","FieldName":"S","ParameterCategory":1},
                         {"ClassName":"VirtualCntrl","FieldName":"S","Operator":"=","ValueType":"decimal","DefualtValue":"7","ParameterCategory":1}])J")
        << none << none << R"J([] [["S","S_0","==",[7]]])J";
    QTest::newRow("PROVINCE with 未选择 is dropped")
        << QByteArray(R"J([{"ClassName":"VirtualCntrl","FieldName":"PROVINCE","ValueType":"string","DefualtValue":"未选择"}])J") << none << none
        << "[] []";
    QTest::newRow("PROVINCE empty is dropped") << QByteArray(R"J([{"ClassName":"TextEdit","FieldName":"PROVINCE","ValueType":"string"}])J") << none
        << none << "[] []";
    QTest::newRow("PROVINCE list starting with 未选择 is dropped")
        << QByteArray(R"J([{"ClassName":"VirtualCntrl","FieldName":"PROVINCE","Operator":"IN","ValueType":"string","DefualtValue":"未选择;广东"}])J")
        << none << none << "[] []";
    QTest::newRow("PROVINCE with a province")
        << QByteArray(R"J([{"ClassName":"VirtualCntrl","FieldName":"PROVINCE","ValueType":"string","DefualtValue":"广东"}])J") << none << none
        << R"J([] [["PROVINCE","PROVINCE_0","==",["广东"]]])J";
    QTest::newRow("another field keeps 未选择")
        << QByteArray(R"J([{"ClassName":"VirtualCntrl","FieldName":"CITY","ValueType":"string","DefualtValue":"未选择"}])J") << none << none
        << R"J([] [["CITY","CITY_0","==",["未选择"]]])J";
    QTest::newRow("lower-case province is another field")
        << QByteArray(R"J([{"ClassName":"VirtualCntrl","FieldName":"province","ValueType":"string","DefualtValue":"未选择"}])J") << none << none
        << R"J([] [["province","province_0","==",["未选择"]]])J";
    QTest::newRow("dynamic default from another control")
        << QByteArray(R"J([{"ClassName":"DateEdit","Caption":"报告日","DefualtValue":"=date'2022-12-31'"},
                         {"ClassName":"VirtualCntrl","FieldName":"YEAR","Operator":"<=","ValueType":"decimal","DefualtValue":"=$ofyear([报告日])"}])J")
        << none << none << R"J([] [["YEAR","YEAR_0","<=",[2022]]])J";
    QTest::newRow("dynamic default over a range gives two arguments")
        << QByteArray(R"J([{"ClassName":"DateTimeInterval","Caption":"区间","DefualtValue":"date'2019-01-01';date'2021-12-31'"},
                         {"ClassName":"VirtualCntrl","FieldName":"YEARS","ValueType":"string","DefualtValue":"=$ofbetweenyear([区间])"}])J")
        << none << none << R"J([] [["YEARS","YEARS_0","==",["2024,2024"]]])J";
    QTest::newRow("dynamic default naming no caption stays")
        << QByteArray(R"J([{"ClassName":"VirtualCntrl","FieldName":"YEAR","Operator":"<=","ValueType":"string","DefualtValue":"=$ofyear([无此控件])"},
                         {"ClassName":"TextEdit","FieldName":"C","ValueType":"string","DefualtValue":"x"}])J")
        << none << none << R"J([] [["YEAR","YEAR_0","<=",["=$ofyear([无此控件])"]],["C","C_0","==",["x"]]])J";
    QTest::newRow("unknown control and bad defaults lose nothing else")
        << QByteArray(R"J([{"ClassName":"Slider","FieldName":"S","DefualtValue":"1"},
                         {"ClassName":"DateEdit","FieldName":"D","ValueType":"DateTime","DefualtValue":"not a date"},
                         {"ClassName":"DecimalTextEditInterval","FieldName":"P","ValueType":"decimal","DefualtValue":"x;y"},
                         {"ClassName":"VirtualCntrl","FieldName":"N","ValueType":"decimal","DefualtValue":"abc"},
                         {"ClassName":"TextEdit","FieldName":"C","ValueType":"string","DefualtValue":"x"}])J")
        << none << none << R"J([] [["D","D_0","==",["[2000-01-01 23:59:59]"]],["N","N_0","==",[0]],["C","C_0","==",["x"]]])J";
    QTest::newRow("a number where a text belongs reads as empty")
        << QByteArray(R"J([{"ClassName":"TextEdit","FieldName":"C","ValueType":"string","DefualtValue":5},
                         {"ClassName":"DateTimeInterval","FieldName":"T","ValueType":"DateTime","DefualtValue":["x"]}])J")
        << none << none << R"J([] [["C","C_0","==",[""]],["T","T_0",">=",["[2024-06-15 00:00:00]"]],["T","T_1","<=",["[2024-06-15 23:59:59]"]]])J";
    QTest::newRow("group marker, sort button and buttons add nothing")
        << QByteArray(R"J([{"ClassName":"GroupFlagControl","FieldName":"G","DefualtValue":"1"},
                         {"ClassName":"SimpleButtonSort","FieldName":"S","DefualtValue":"1"},
                         {"ClassName":"SimpleButtonGetData","FieldName":"B","DefualtValue":"1"}])J")
        << none << none << "[] []";
    const auto secu = [](const char *cls) {
        return QByteArray(R"J([{"ClassName":")J") + cls
               + R"J(","FieldName":"SECU_ID","Operator":"=","ValueType":"decimal","DefualtValue":"1"}])J";
    };
    QTest::newRow("default") << secu("F9SecuIdCntrl") << none << none << R"J([] [["SECU_ID","SECU_ID_0","==",[1]]])J";
    QTest::newRow("F9 argument replaces") << secu("F9SecuIdCntrl") << none << QVariantMap{{"SECU_ID", "600000"}}
        << R"J([] [["SECU_ID","SECU_ID_0","==",["600000"]]])J";
    QTest::newRow("F9 company control, any case") << secu("f9comidcntrl") << none << QVariantMap{{"SECU_ID", "8"}}
        << R"J([] [["SECU_ID","SECU_ID_0","==",["8"]]])J";
    QTest::newRow("empty F9 argument leaves the default") << secu("F9SecuIdCntrl") << none << QVariantMap{{"SECU_ID", ""}}
        << R"J([] [["SECU_ID","SECU_ID_0","==",[1]]])J";
    QTest::newRow("F9 arguments only for F9 controls") << secu("VirtualCntrl") << none << QVariantMap{{"SECU_ID", "600000"}}
        << R"J([] [["SECU_ID","SECU_ID_0","==",[1]]])J";
    QTest::newRow("global argument replaces") << secu("VirtualCntrl") << QVariantMap{{"SECU_ID", "42"}} << none
        << R"J([] [["SECU_ID","SECU_ID_0","==",[42]]])J";
    QTest::newRow("empty global argument still replaces") << secu("VirtualCntrl") << QVariantMap{{"SECU_ID", ""}} << none
        << R"J([] [["SECU_ID","SECU_ID_0","==",[0]]])J";
    QTest::newRow("global argument of another key") << secu("VirtualCntrl") << QVariantMap{{"COM_ID", "42"}} << none
        << R"J([] [["SECU_ID","SECU_ID_0","==",[1]]])J";
    QTest::newRow("F9 after global") << secu("F9SecuIdCntrl") << QVariantMap{{"SECU_ID", "42"}} << QVariantMap{{"SECU_ID", "600000"}}
        << R"J([] [["SECU_ID","SECU_ID_0","==",["600000"]]])J";
}

void tst_TFFilterWidget::finalFilter()
{
    QFETCH(QByteArray, config);
    QFETCH(QVariantMap, global);
    QFETCH(QVariantMap, f9);
    QFETCH(QString, expected);

    TFSubjectMainFrame mainFrame;
    mainFrame.setF9Args(f9);
    // The bar finds the composite-screen frame by its class name and reads
    // its glFilterArgs, which hold the screen's arguments.
    ScreenArgs screen;
    screen.args = global;
    auto *holder = new QWidget(&mainFrame);
    holder->setProperty("zhpObj", QVariant::fromValue<QObject *>(&screen));
    auto *bar = new TFFilterWidget(new QWidget(new TFFrameSubjectZHP(holder)));
    bar->setFilterData(rows(config.constData()));
    // The bar appends to what the lists already hold.
    QList<FilterParam::DataSourceFilter> params{{QStringLiteral("before"), 1}};
    QList<FilterParam::CustomFilter> filters{{QStringLiteral("F"), QStringLiteral("F"), QStringLiteral("=="), {1}}};
    bar->finalFilter(params, filters);
    QCOMPARE(describe(params.mid(0, 1), filters.mid(0, 1)), QStringLiteral(R"J([["before",1]] [["F","F","==",[1]]])J"));
    QCOMPARE(describe(params.mid(1), filters.mid(1)), expected);
}

void tst_TFFilterWidget::rebuildLeavesOnlyTheNewControls()
{
    TFFilterWidget bar;
    bar.setFilterData(rows(R"J([{"ClassName":"TextEdit","FieldName":"A","DefualtValue":"a"},
                               {"ClassName":"DateEdit","FieldName":"B"},
                               {"ClassName":"SimpleButtonGetData","Caption":"查询"}])J"));
    QCOMPARE(bar.controls().size(), 3);
    bar.controls().first()->findChild<QLineEdit *>()->setText(QStringLiteral("changed"));
    QPointer<TFBaseFilterWidget> old = bar.controls().first();

    bar.setFilterData(rows(R"J([{"ClassName":"TextEdit","FieldName":"A","DefualtValue":"a"}])J"));
    QVERIFY(!old);
    QCOMPARE(bar.layout()->count(), 1);
    QCOMPARE(bar.findChildren<TFBaseFilterWidget *>().size(), 1);
    QCOMPARE(finalFilterOf(bar), QStringLiteral(R"J([] [["A","A_0","==",["a"]]])J"));

    bar.reset();
    QCOMPARE(bar.layout()->count(), 0);
}

void tst_TFFilterWidget::childViewTakesTheBarsValues()
{
    // A child's "between" row takes the range of the main bar; a linked
    // field whose cell is empty falls back on the bar control of that key.
    TFFilterWidget bar;
    bar.setFilterData(rows(R"J([{"ClassName":"DateTimeInterval","FieldName":"T","ValueType":"DateTime","DefualtValue":"date'2024-01-01';date'2024-03-31'"},
                               {"ClassName":"TextEdit","FieldName":"CODE","ValueType":"string","DefualtValue":"600"}])J"));
    ChildView child;
    child.rows = rows(R"J([{"ClassName":"TextEdit","FieldName":"D","Operator":"between"},
                           {"ClassName":"TextEdit","FieldName":"C","Operator":"=","ValueType":"string"}])J");
    TFTableModelData::tagCellValue cell;
    cell.fieldName = QStringLiteral("CODE");
    child.setChildFilters(bar.getCntrls(), RowData{cell}, QStringLiteral("A.CODE=数据源.C"));
    QCOMPARE(describe(child.params(), child.filters()),
             QStringLiteral(R"J([["",null]] [["D","D_start","<=",["2024-01-01 00:00:00"]],["D_start","D_start_start","<=",["2024-03-31 23:59:59"]],["C","C","==",["600"]]])J"));
}

QTEST_MAIN(tst_TFFilterWidget)
#include "tst_tffilterwidget.moc"
