#include "echarts/tfdatasource.h"

#include "catalogue.h"
#include "configurationdocument.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <ctime>

using namespace SubjectService;

// The messages the chart page draws, built from the configuration that the
// reference service makes of a catalogue chart view and from rows given
// here, compared as compact JSON text; then the rules of the series step,
// and input that is not what it should be.
class tst_TFDataSource : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void catalogueMessages_data();
    void catalogueMessages();
    void selectRows_data();
    void selectRows();
    void roundValue_data();
    void roundValue();
    void seriesRules_data();
    void seriesRules();
    void seriesType_data();
    void seriesType();
    void crossExpand();
    void badInput_data();
    void badInput();
    void pageSlots();

private:
    QJsonObject document(qint64 viewId, const QJsonArray &rows) const;
    Catalogue m_catalogue;
};

static QJsonArray rowsOf(const char *json)
{
    return QJsonDocument::fromJson(QByteArray(json)).array();
}

// A chart view's document as the service would send it, from a chart object
// and view properties written in the test.
static QJsonObject chartDocument(const QJsonObject &chart, const QJsonObject &properties = {},
                                 const QJsonArray &rows = {})
{
    QJsonArray viewConfig;
    for (auto it = properties.constBegin(); it != properties.constEnd(); ++it)
        viewConfig.append(QJsonObject { { "obj_vw_id", 1 }, { "prop_typ", "" }, { "prop_name", it.key() },
                                        { "prop_val", it.value() } });
    viewConfig.append(QJsonObject { { "obj_vw_id", 1 }, { "prop_typ", "EXTEND" }, { "prop_name", "ChartViewConfig" },
                                    { "ext_prop_val", QString::fromUtf8(QJsonDocument(chart).toJson()) } });
    return QJsonObject { { "Data", rows },
                         { "View_Config", viewConfig },
                         { "Object_View", QJsonArray { QJsonObject { { "obj_vw_name", "图" } } } } };
}

void tst_TFDataSource::initTestCase()
{
    // Date labels are formatted in local time.
    qputenv("TZ", "UTC");
    tzset();
    QString error;
    QVERIFY2(m_catalogue.load(&error), qPrintable(error));
}

QJsonObject tst_TFDataSource::document(qint64 viewId, const QJsonArray &rows) const
{
    const ViewDefinition *view = m_catalogue.view(viewId);
    if (!view)
        return {};
    return ConfigurationDocument::document(*view, rows, ConfigurationDocument::summary({}));
}

void tst_TFDataSource::catalogueMessages_data()
{
    QTest::addColumn<qint64>("viewId");
    QTest::addColumn<QJsonArray>("rows");
    QTest::addColumn<bool>("wholeDocument");   // a cross view's reply is a whole document
    QTest::addColumn<QByteArray>("expected");

    const QByteArray oneAxis = R"j("yAxis":[{"position":"left","scale":true,"splitLine":{"show":false},"type":"value"}])j";
    const QByteArray twoAxes = R"j("yAxis":[{"position":"left","scale":true,"splitLine":{"show":false},"type":"value"},)j"
                               R"j({"position":"right","scale":true,"splitLine":{"show":false},"type":"value"}])j";
    const QByteArray label = R"j("label":{"emphasis":{"show":true},"normal":{"show":false}})j";
    const QByteArray titleStyle = R"j("textAlign":"center","textStyle":{"fontFamily":"微软雅黑","fontSize":12,"fontWeight":100})j";

    // Dates come newest first and are drawn oldest first.
    QTest::newRow("line: CPI and PPI, 611") << qint64(611)
        << rowsOf(R"j([{"END_DATE":1706745600000,"CPI_YOY":1.04,"PPI_YOY":-1.23},
                      {"END_DATE":1704067200000,"CPI_YOY":0.26,"PPI_YOY":-2.57}])j") << false
        << (R"j({"legend":[{"name":"CPI同比(%)"},{"name":"PPI同比(%)"}],"legendPostion":1,"series":[)j"
            R"j({"data":[0.3,1],"name":"CPI同比(%)","smooth":true,"type":"line"},)j"
            R"j({"data":[-2.6,-1.2],"name":"PPI同比(%)","type":"line"}],)j"
            R"j("xAxisLabel":{"interval":"auto","rotate":0},"xData":["2024-01","2024-02"],)j" + oneAxis + "}");

    // Stacked columns in trillions, and a line on the right axis.
    QTest::newRow("mixed: GDP, 612") << qint64(612)
        << rowsOf(R"j([{"PERIOD_NAME":"2024Q1","PRIMARY_IND":11538,"SECONDARY_IND":61683,"TERTIARY_IND":76617,"GDP_YOY":5.3},
                      {"PERIOD_NAME":"2024Q2","PRIMARY_IND":18000,"SECONDARY_IND":70000,"TERTIARY_IND":82222,"GDP_YOY":4.7}])j")
        << false
        << (R"j({"legend":[{"name":"第一产业(万亿元)"},{"name":"第二产业(万亿元)"},{"name":"第三产业(万亿元)"},{"name":"GDP同比(%)"}],)j"
            R"j("legendPostion":3,"series":[)j"
            R"j({"barGap":0,"data":[1,2],"name":"第一产业(万亿元)","stack":1,"type":"bar"},)j"
            R"j({"barGap":0,"data":[6.17,7],"name":"第二产业(万亿元)","stack":1,"type":"bar"},)j"
            R"j({"barGap":0,"data":[7.66,8.22],"name":"第三产业(万亿元)","stack":1,"type":"bar"},)j"
            R"j({"data":[5.3,4.7],"name":"GDP同比(%)","type":"line","yAxisIndex":1}],)j"
            R"j("xAxisLabel":{"interval":"auto","rotate":0},"xData":["2024Q1","2024Q2"],)j" + twoAxes + "}");

    QTest::newRow("plain pie: ratings, 3112") << qint64(3112)
        << rowsOf(R"j([{"RATING":"AAA","BOND_CNT":12,"ISSUE_AMT":3456000000},{"RATING":"AA+","BOND_CNT":30,"ISSUE_AMT":1234560000}])j")
        << false
        << (R"j({"axisShow":false,"legend":[{"name":"AAA"},{"name":"AA+"}],"legendPostion":2,"series":[)j"
            R"j({"center":["33%","50%"],"data":[{"name":"AAA","value":12},{"name":"AA+","value":30}],)j" + label
            + R"j(,"name":"只数","type":"pie"},)j"
            R"j({"center":["66%","50%"],"data":[{"name":"AAA","value":34.56},{"name":"AA+","value":12.35}],)j" + label
            + R"j(,"name":"发行规模(亿元)","type":"pie"}],"title":[)j"
            R"j({"text":"只数",)j" + titleStyle + R"j(,"x":"33%","y":"2%"},)j"
            R"j({"text":"发行规模(亿元)",)j" + titleStyle + R"j(,"x":"66%","y":"2%"}]})j");

    // One pie per row; its slices stand in reverse order of the entries.
    QTest::newRow("pivot pie: profit structure, 1591") << qint64(1591)
        << rowsOf(R"j([{"IND_NAME":"银行","REVENUE":500000000,"NET_PROFIT":120000000},
                      {"IND_NAME":"医药","REVENUE":250000000,"NET_PROFIT":30000000}])j") << false
        << (R"j({"axisShow":false,"legend":[{"name":"营业收入(亿元)"},{"name":"净利润(亿元)"}],"legendPostion":3,"series":[)j"
            R"j({"center":["33%","50%"],"data":[{"name":"净利润(亿元)","value":1.2},{"name":"营业收入(亿元)","value":5}],)j"
            + label + R"j(,"name":"银行","type":"pie"},)j"
            R"j({"center":["66%","50%"],"data":[{"name":"净利润(亿元)","value":0.3},{"name":"营业收入(亿元)","value":2.5}],)j"
            + label + R"j(,"name":"医药","type":"pie"}],"title":[)j"
            R"j({"text":"银行",)j" + titleStyle + R"j(,"x":"33%","y":"2%"},)j"
            R"j({"text":"医药",)j" + titleStyle + R"j(,"x":"66%","y":"2%"}]})j");

    // One series per row, the entries' labels on the axis.
    QTest::newRow("rows as series: economies, 47851") << qint64(47851)
        << rowsOf(R"j([{"COUNTRY":"美国","GDP_GROWTH":2.5,"CPI":3.4,"UNEMPLOYMENT":3.9},
                      {"COUNTRY":"日本","GDP_GROWTH":0.9,"CPI":2.8,"UNEMPLOYMENT":2.5}])j") << false
        << (R"j({"legend":[{"name":"美国"},{"name":"日本"}],"legendPostion":4,"series":[)j"
            R"j({"barGap":0,"data":[2.5,3.4,3.9],"name":"美国","type":"bar"},)j"
            R"j({"barGap":0,"data":[0.9,2.8,2.5],"name":"日本","type":"bar"}],)j"
            R"j("xAxisLabel":{"interval":"auto","rotate":0},"xData":["GDP增速","CPI","失业率"],)j" + oneAxis + "}");

    // A cross reply: one series per year of the group columns.
    QTest::newRow("cross data: profit by year, 1592") << qint64(1592)
        << rowsOf(R"j([{"IND_NAME":"银行","2023__NET_PROFIT":1.2e10,"2024__NET_PROFIT":1.25e10},
                      {"IND_NAME":"医药","2023__NET_PROFIT":3.33e9,"2024__NET_PROFIT":3.5e9}])j") << true
        << (R"j({"legend":[{"name":"2023年净利润(亿元)"},{"name":"2024年净利润(亿元)"}],"legendPostion":1,"series":[)j"
            R"j({"barGap":0,"data":[120,33.3],"name":"2023年净利润(亿元)","type":"bar"},)j"
            R"j({"barGap":0,"data":[125,35],"name":"2024年净利润(亿元)","type":"bar"}],)j"
            R"j("xAxisLabel":{"interval":"auto","rotate":0},"xData":["银行","医药"],)j" + oneAxis + "}");
}

void tst_TFDataSource::catalogueMessages()
{
    QFETCH(qint64, viewId);
    QFETCH(QJsonArray, rows);
    QFETCH(bool, wholeDocument);
    QFETCH(QByteArray, expected);

    TFDataSource source;
    QByteArrayList sent;   // of either kind, mixed or pie
    connect(&source, &TFDataSource::signalMixedChartData, [&sent](const QByteArray &message) { sent << message; });
    connect(&source, &TFDataSource::signalPieData, [&sent](const QByteArray &message) { sent << message; });
    QVERIFY(!document(viewId, {}).isEmpty());
    source.loadConfig(document(viewId, {}));
    QVERIFY(!source.hasSeries());   // the configuration's own rows are none
    source.loadConfigAndData(wholeDocument ? document(viewId, rows) : QJsonObject { { "Data", rows } });
    source.slotRefreshChartDaTa();
    QCOMPARE(QString::fromUtf8(sent.join('\n')), QString::fromUtf8(expected));
}

void tst_TFDataSource::selectRows_data()
{
    QTest::addColumn<int>("rowCount");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("step");
    QTest::addColumn<QList<int>>("expected");

    QTest::newRow("one row, every n-th") << 1 << 3 << 7 << QList<int> { 0 };
    QTest::newRow("one row, unknown mode") << 1 << 9 << 0 << QList<int> { 0 };
    QTest::newRow("three rows, every 5th") << 3 << 3 << 5 << QList<int> { 0, 1, 2 };
    QTest::newRow("three rows, mode 9") << 3 << 9 << 2 << QList<int> {};
    QTest::newRow("first 0") << 3 << 2 << 0 << QList<int> {};
    QTest::newRow("all with step 0") << 3 << 1 << 0 << QList<int> { 0, 1, 2 };
    QTest::newRow("negative step") << 3 << 4 << -1 << QList<int> {};
    QTest::newRow("first 2") << 5 << 2 << 2 << QList<int> { 0, 1 };
    QTest::newRow("every 2nd") << 7 << 3 << 2 << QList<int> { 1, 3, 5 };
    QTest::newRow("last 2") << 5 << 4 << 2 << QList<int> { 3, 4 };
    QTest::newRow("step equal to the count") << 4 << 4 << 4 << QList<int> { 0, 1, 2, 3 };
}

void tst_TFDataSource::selectRows()
{
    QFETCH(int, rowCount);
    QFETCH(int, mode);
    QFETCH(int, step);
    QFETCH(QList<int>, expected);

    QList<QVariantMap> rows;
    for (int i = 0; i < rowCount; ++i)
        rows.append(QVariantMap { { "i", i } });
    QList<int> got;
    for (const QVariantMap &row : TFDataSource::selectRows(rows, mode, step))
        got.append(row.value("i").toInt());
    QCOMPARE(got, expected);
}

void tst_TFDataSource::roundValue_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("format");
    QTest::addColumn<double>("expected");

    // As if written with QString::number and read back.
    QTest::newRow("whole number, no format") << 3.0 << "" << 3.0;
    QTest::newRow("fraction, no format: two decimals") << 2.345678 << "" << 2.35;
    QTest::newRow("six digits leave no fraction: kept") << 123456.5 << "" << 123456.5;
    QTest::newRow("exponent form without a point: kept") << 1e-9 << "" << 1e-9;
    QTest::newRow("exponent form with a point: rounded") << 1234567.125 << "" << 1234567.13;
    QTest::newRow("a tie goes away from zero") << 0.125 << "n2" << 0.13;
    QTest::newRow("a negative tie too") << -0.125 << "N2" << -0.13;
    QTest::newRow("a tie of three decimals") << 1.0625 << "n3" << 1.063;
    QTest::newRow("a tie to a whole number") << 2.5 << "n0" << 3.0;
    QTest::newRow("2.675 lies below the tie") << 2.675 << "" << 2.67;
    QTest::newRow("a negative zero keeps its sign") << -0.001 << "" << -0.0;
    QTest::newRow("N3") << 1.23456 << "N3" << 1.235;
    QTest::newRow("n0") << 7.6 << "n0" << 8.0;
    QTest::newRow("a comma and a digit") << 1.23456 << ",2" << 1.23;
    QTest::newRow("N12 does not match") << 1.23456 << "N12" << 1.23456;
    QTest::newRow("other format") << 1.23456 << "0.00" << 1.23456;
}

void tst_TFDataSource::roundValue()
{
    QFETCH(double, value);
    QFETCH(QString, format);
    QFETCH(double, expected);
    const double got = TFDataSource::roundValue(value, format);
    QCOMPARE(got, expected);
    QCOMPARE(std::signbit(got), std::signbit(expected));
}

// Column mode quirks, each seen in the mixed message: "labels|name=values|...".
void tst_TFDataSource::seriesRules_data()
{
    QTest::addColumn<QJsonObject>("chart");
    QTest::addColumn<QJsonObject>("properties");
    QTest::addColumn<QJsonArray>("rows");
    QTest::addColumn<QString>("expected");

    auto entry = [](const char *field, const char *legend, const QJsonObject &extra = {}) {
        QJsonObject entry { { "FieldName", field }, { "LegendLable", legend }, { "ChartType", "Column" }, { "IsVisible", true } };
        for (auto it = extra.constBegin(); it != extra.constEnd(); ++it)
            entry.insert(it.key(), it.value());
        return entry;
    };
    auto scaled = [&entry](int category, int factor) {
        return entry("V", "v", { { "UnitCategory", category }, { "PrevUnitFactor", 1 }, { "ShowUnitFactor", factor } });
    };
    const QJsonArray rows = rowsOf(R"j([{"X":"b","V":5000,"W":1,"K":2},{"X":"a","V":2000,"W":2,"K":1},{"X":"c","V":3000,"W":3,"K":3}])j");
    auto with = [](const QJsonArray &entries, const QJsonObject &extra = {}) {
        QJsonObject chart { { "ChartType", "Column" }, { "XFieldName", "X" }, { "XValueType", "String" },
                            { "XDisplayDataPattern", 1 }, { "ChartDataConfigs", entries } };
        for (auto it = extra.constBegin(); it != extra.constEnd(); ++it)
            chart.insert(it.key(), it.value());
        return chart;
    };

    QTest::newRow("string axis keeps the service's order") << with({ entry("W", "w") }) << QJsonObject() << rows << "b,a,c|w=1,2,3";
    // A turned axis is sorted, descending without chart data, and each label
    // and value goes in front: both come out ascending and stay matched.
    QTest::newRow("turned axis: labels and values in front")
        << with({ entry("W", "w") }, { { "IsTurnXAxis", true } }) << QJsonObject() << rows << "a,b,c|w=2,1,3";
    QTest::newRow("a numeric axis is sorted, descending without chart data")
        << with({ entry("V", "v") }, { { "XFieldName", "K" }, { "XValueType", "Decimal" } })
        << QJsonObject { { "IsGetChartData", "0" } } << rows << "3,2,1|v=3000,5000,2000";
    QTest::newRow("the view's order sorts, first key ascending")
        << with({ entry("W", "w") }) << QJsonObject { { "isorder", "1" }, { "IsGetChartData", "0" }, { "order", "V asc" } }
        << rows << "a,c,b|w=2,3,1";
    QTest::newRow("factors apply") << with({ scaled(1, 1000) }) << QJsonObject() << rows << "b,a,c|v=5,2,3";
    QTest::newRow("unit category 0 ignores the factors") << with({ scaled(0, 1000) }) << QJsonObject() << rows << "b,a,c|v=5000,2000,3000";
    QTest::newRow("unit category -1 ignores the factors") << with({ scaled(-1, 1000) }) << QJsonObject() << rows << "b,a,c|v=5000,2000,3000";
    QTest::newRow("show factor 0 ignores the factors") << with({ scaled(1, 0) }) << QJsonObject() << rows << "b,a,c|v=5000,2000,3000";
    QTest::newRow("placeholders: the first series alone is filled")
        << with({ entry("W", "w ${X}"), entry("K", "k ${X}") }) << QJsonObject() << rows << "b,a,c|w b=1,2,3|k ${X}=2,1,3";
    QTest::newRow("a hidden series leaves no gap")
        << with({ entry("W", "w", { { "IsVisible", false } }), entry("K", "k") }) << QJsonObject() << rows << "b,a,c|k=2,1,3";
    QTest::newRow("no label at all: an empty chart")
        << with({ entry("W", "w") }, { { "XFieldName", "MISSING" } }) << QJsonObject() << rows << "";
    // Input that is not what it should be: what is valid is drawn.
    const QJsonArray bad = rowsOf(R"j([{"X":"a","V":1.5},{"X":"b","V":"abc"},{"X":"c"}])j");
    QTest::newRow("text and missing values read as 0") << with({ entry("V", "v") }) << QJsonObject() << bad << "a,b,c|v=1.5,0,0";
    QTest::newRow("unknown type and no legend")
        << with({ QJsonObject { { "FieldName", "V" }, { "ChartType", "Radar" }, { "IsVisible", true } } }) << QJsonObject()
        << bad << "a,b,c|=1.5,0,0";
    QTest::newRow("entries that are no objects") << with({ 1, "x", QJsonObject() }) << QJsonObject() << bad << "a,b,c";
    QTest::newRow("ill-typed chart keys select no rows")
        << with({ entry("V", "v") }, { { "XDisplayDataPattern", "all" }, { "ChartType", 7 } }) << QJsonObject() << bad << "";
    QTest::newRow("rows that are no objects") << with({ entry("V", "v") }) << QJsonObject() << QJsonArray { 1, "x" } << "";
}

void tst_TFDataSource::seriesRules()
{
    QFETCH(QJsonObject, chart);
    QFETCH(QJsonObject, properties);
    QFETCH(QJsonArray, rows);
    QFETCH(QString, expected);

    TFDataSource source;
    QSignalSpy mixed(&source, &TFDataSource::signalMixedChartData);
    source.loadConfig(chartDocument(chart, properties));
    source.loadConfigAndData(chartDocument(chart, properties, rows));
    source.slotRefreshChartDaTa();
    QCOMPARE(mixed.count(), 1);
    const QJsonObject message = QJsonDocument::fromJson(mixed.last().at(0).toByteArray()).object();
    const auto joined = [](const QJsonArray &array) {
        QStringList texts;
        for (const QJsonValue &value : array)
            texts.append(value.isString() ? value.toString() : QString::number(value.toDouble()));
        return texts.join(',');
    };
    QStringList got { joined(message.value("xData").toArray()) };
    for (const QJsonValue &series : message.value("series").toArray())
        got.append(series.toObject().value("name").toString() + '=' + joined(series.toObject().value("data").toArray()));
    QCOMPARE(got.join('|'), expected);
}

void tst_TFDataSource::seriesType_data()
{
    QTest::addColumn<QString>("chartType");
    QTest::addColumn<QString>("type");

    QTest::newRow("XYPlot") << "XYPlot" << "scatter";
    QTest::newRow("Line") << "Line" << "line";
    QTest::newRow("LineSymbols") << "LineSymbols" << "line";
    QTest::newRow("LineSmoothed") << "LineSmoothed" << "line";
    QTest::newRow("Area") << "Area" << "line";
    QTest::newRow("AreaStacked") << "AreaStacked" << "line";
    QTest::newRow("AreaStacked100pc") << "AreaStacked100pc" << "line";
    QTest::newRow("Pie") << "Pie" << "pie";
    QTest::newRow("line in lower case is not in the map") << "line" << "bar";
    QTest::newRow("unknown") << "Radar" << "bar";
}

void tst_TFDataSource::seriesType()
{
    QFETCH(QString, chartType);
    QFETCH(QString, type);
    TFDataSource source;
    QCOMPARE(source.seriesType(chartType), type);
}

// A cross reply's group columns each make a series, in the order of their
// group, the group before the legend; without them the plain field stays.
void tst_TFDataSource::crossExpand()
{
    ChartViewConfig config;
    config.ChartDataConfigs = { ChartDataConfig() };
    config.ChartDataConfigs[0].FieldName = "X";
    config.ChartDataConfigs[0].LegendLable = "L";
    QStringList got;
    const QList<QVariantMap> rows { { { "B__X", 1 }, { "A__X", 2 }, { "X", 3 }, { "NAME", "n" } } };
    for (const QList<QVariantMap> &given : { rows, QList<QVariantMap> { { { "X", 3 } } }, QList<QVariantMap>() }) {
        for (const ChartDataConfig &entry : TFDataSource::crossExpand(given, config).ChartDataConfigs)
            got.append(entry.FieldName + '|' + entry.LegendLable);
    }
    QCOMPARE(got, (QStringList { "A__X|AL", "B__X|BL", "X|L", "X|L" }));
}

// A reply that is no chart document clears the chart and sends nothing.
void tst_TFDataSource::badInput_data()
{
    QTest::addColumn<QJsonValue>("reply");
    QTest::newRow("empty reply") << QJsonValue(QJsonObject());
    QTest::newRow("reply that is an array") << QJsonValue(QJsonArray { 1, 2 });
}

void tst_TFDataSource::badInput()
{
    QFETCH(QJsonValue, reply);
    TFDataSource source;
    QSignalSpy cleared(&source, &TFDataSource::signalClear);
    source.loadConfigAndData(reply);
    QCOMPARE(cleared.count(), 1);
    QVERIFY(!source.hasSeries());
}

void tst_TFDataSource::pageSlots()
{
    TFDataSource source;
    QSignalSpy canShow(&source, &TFDataSource::signalCanShowChart);
    QSignalSpy save(&source, &TFDataSource::signalSaveImage);
    QSignalSpy copy(&source, &TFDataSource::signalCopyImage);
    QSignalSpy print(&source, &TFDataSource::signalPrintImage);
    source.slotWebConnectFinished();
    QCOMPARE(canShow.count(), 1);

    // The page's menu must be gone before the picture is taken.
    QElapsedTimer timer;
    timer.start();
    source.saveImage();
    source.copyImage();
    source.printImage();
    QCOMPARE(save.count() + copy.count() + print.count(), 0);
    QTRY_COMPARE(save.count() + copy.count() + print.count(), 3);
    QVERIFY(timer.elapsed() >= 50);
    QCOMPARE(save.at(0).at(0).toString(), QString());

    // Three pies stand at 25, 50 and 75 per cent.
    const QJsonObject pie { { "ChartType", "Pie" }, { "XFieldName", "X" }, { "XValueType", "String" }, { "XDisplayDataPattern", 1 },
                            { "ChartDataConfigs", QJsonArray { QJsonObject { { "FieldName", "A" }, { "ChartType", "Pie" } },
                                                               QJsonObject { { "FieldName", "B" }, { "ChartType", "Pie" } },
                                                               QJsonObject { { "FieldName", "C" }, { "ChartType", "Pie" } } } } };
    QSignalSpy pies(&source, &TFDataSource::signalPieData);
    source.loadConfig(chartDocument(pie));
    source.loadConfigAndData(chartDocument(pie, {}, rowsOf(R"j([{"X":"x","A":1,"B":2,"C":3}])j")));
    source.slotRefreshChartDaTa();
    QCOMPARE(pies.count(), 1);
    QStringList centres;
    const QJsonArray series = QJsonDocument::fromJson(pies.last().at(0).toByteArray()).object().value("series").toArray();
    for (const QJsonValue &one : series)
        centres.append(one.toObject().value("center").toArray().at(0).toString());
    QCOMPARE(centres, (QStringList { "25%", "50%", "75%" }));
}

QTEST_GUILESS_MAIN(tst_TFDataSource)
#include "tst_tfdatasource.moc"
