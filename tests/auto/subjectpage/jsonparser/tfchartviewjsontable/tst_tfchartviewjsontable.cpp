#include "jsonparser/tfchartviewjsontable.h"

#include "../shared/jsontext.h"
#include "../shared/messagelog.h"

#include <QtTest>

class tst_TFChartViewJsonTable : public QObject
{
    Q_OBJECT

private slots:
    void readsEveryMember();
    void readsEverySeriesKey();
    void seriesNumbers_data();
    void seriesNumbers();
    void seriesElements();
    void defaults();
    void badText_data();
    void badText();
    void badTextClearsEarlierChart();
};

static QJsonObject fullChart()
{
    return QJsonObject {
        { "ChartXData", "rows" }, { "Title", "收盘价走势" }, { "YTitle", "元" }, { "XDisplayDataPattern", 1 },
        { "XDisplayStep", 5 }, { "ChartType", "Line" }, { "XFieldName", "TRD_DT" },
        { "XItemNamesFormat", "yyyy-MM-dd" }, { "IsSwitchXAxis", true }, { "Style", "shine" }, { "AnnoAngle", 45 },
        { "ToolBarVisible", true }, { "LegendPosition", 2 }, { "IsTurnXAxis", true }, { "XValueType", "datetime" },
        { "DefaultDataChartType", "Bar" }, { "YSetMinMaxValue", "0,100" }, { "YSetNullValue", "zero" },
        { "ChartDataConfigs", QJsonArray {
            QJsonObject { { "DataValues", "dv" }, { "FieldName", "CLS_PRC" }, { "LegendLable", "收盘价" },
                          { "LegendLableFormat", "{0}" }, { "ChartType", "ColumnStacked" },
                          { "ValueFormatString", "n2" }, { "IsVisible", true }, { "UnitCategory", 1 },
                          { "PrevUnitFactor", 10 }, { "ShowUnitFactor", 0.5 }, { "ShowUnit", "元" },
                          { "CaptionShowType", 3 }, { "YShaftType", "Right" }, { "SetStackGroup", 2 } },
        } },
    };
}

void tst_TFChartViewJsonTable::readsEveryMember()
{
    TFChartViewJsonTable table;
    table.initWith(jsonText(fullChart()));
    const ChartViewConfig config = table.config();
    QCOMPARE(config.ChartXData, QString("rows"));
    QCOMPARE(config.Title, QString("收盘价走势"));
    QCOMPARE(config.YTitle, QString("元"));
    QCOMPARE(config.XDisplayDataPattern, 1);
    QCOMPARE(config.XDisplayStep, 5);
    QCOMPARE(config.ChartType, QString("Line"));
    QCOMPARE(config.XFieldName, QString("TRD_DT"));
    QCOMPARE(config.XItemNamesFormat, QString("yyyy-MM-dd"));
    QCOMPARE(config.IsSwitchXAxis, true);
    QCOMPARE(config.ChartDataConfigs.size(), 1);
    QCOMPARE(config.Style, QString("shine"));
    QCOMPARE(config.AnnoAngle, 45);
    QCOMPARE(config.ToolBarVisible, true);
    QCOMPARE(config.LegendPosition, 2);
    QCOMPARE(config.IsTurnXAxis, true);
    QCOMPARE(config.XValueType, QString("datetime"));
    QCOMPARE(config.DefaultDataChartType, QString("Bar"));
    QCOMPARE(config.YSetMinMaxValue, QString("0,100"));
    QCOMPARE(config.YSetNullValue, QString("zero"));
}

void tst_TFChartViewJsonTable::readsEverySeriesKey()
{
    TFChartViewJsonTable table;
    table.initWith(jsonText(fullChart()));
    const ChartDataConfig series = table.config().ChartDataConfigs.first();
    QCOMPARE(series.DataValues, QString("dv"));
    QCOMPARE(series.FieldName, QString("CLS_PRC"));
    QCOMPARE(series.LegendLable, QString("收盘价"));
    QCOMPARE(series.LegendLableFormat, QString("{0}"));
    QCOMPARE(series.ChartType, QString("ColumnStacked"));
    QCOMPARE(series.ValueFormatString, QString("n2"));
    QCOMPARE(series.IsVisible, true);
    QCOMPARE(series.UnitCategory, 1);
    QCOMPARE(series.PrevUnitFactor, 10);
    QCOMPARE(series.ShowUnitFactor, 0.5);
    QCOMPARE(series.ShowUnit, QString("元"));
    QCOMPARE(series.CaptionShowType, 3);
    QCOMPARE(series.YShaftType, QString("Right"));
    QCOMPARE(series.SetStackGroup, 2);
}

void tst_TFChartViewJsonTable::seriesNumbers_data()
{
    QTest::addColumn<QJsonObject>("series");
    QTest::addColumn<int>("prevUnitFactor");
    QTest::addColumn<double>("showUnitFactor");
    QTest::addColumn<bool>("isVisible");

    QTest::newRow("show factor keeps its fraction") << QJsonObject { { "ShowUnitFactor", 0.5 }, { "IsVisible", true } }
                                                    << 0 << 0.5 << true;
    QTest::newRow("previous factor with a fraction is 0") << QJsonObject { { "PrevUnitFactor", 1.5 } } << 0 << 0.0 << false;
    QTest::newRow("previous factor 10000") << QJsonObject { { "PrevUnitFactor", 10000 } } << 10000 << 0.0 << false;
    QTest::newRow("factors as text") << QJsonObject { { "PrevUnitFactor", "10" }, { "ShowUnitFactor", "10" } }
                                     << 0 << 0.0 << false;
    QTest::newRow("IsVisible absent") << QJsonObject { { "FieldName", "A" } } << 0 << 0.0 << false;
    QTest::newRow("IsVisible as text") << QJsonObject { { "IsVisible", "true" } } << 0 << 0.0 << false;
}

void tst_TFChartViewJsonTable::seriesNumbers()
{
    QFETCH(QJsonObject, series);
    QFETCH(int, prevUnitFactor);
    QFETCH(double, showUnitFactor);
    QFETCH(bool, isVisible);

    TFChartViewJsonTable table;
    table.initWith(jsonText(QJsonObject { { "ChartDataConfigs", QJsonArray { series } } }));
    QCOMPARE(table.config().ChartDataConfigs.size(), 1);
    const ChartDataConfig read = table.config().ChartDataConfigs.first();
    QCOMPARE(read.PrevUnitFactor, prevUnitFactor);
    QCOMPARE(read.ShowUnitFactor, showUnitFactor);
    QCOMPARE(read.IsVisible, isVisible);
}

void tst_TFChartViewJsonTable::seriesElements()
{
    // An element that is no object is a series of defaults all the same.
    TFChartViewJsonTable table;
    table.initWith(jsonText(QJsonObject { { "ChartDataConfigs", QJsonArray {
        QJsonObject { { "FieldName", "A" } }, "B", 3, QJsonObject { { "FieldName", "C" } } } } }));
    const QList<ChartDataConfig> series = table.config().ChartDataConfigs;
    QCOMPARE(series.size(), 4);
    QCOMPARE(series.at(0).FieldName, QString("A"));
    QCOMPARE(series.at(1).FieldName, QString());
    QCOMPARE(series.at(2).SetStackGroup, 0);
    QCOMPARE(series.at(3).FieldName, QString("C"));

    table.initWith(jsonText(QJsonObject { { "ChartDataConfigs", QJsonObject { { "FieldName", "A" } } } }));
    QVERIFY(table.config().ChartDataConfigs.isEmpty());
}

void tst_TFChartViewJsonTable::defaults()
{
    TFChartViewJsonTable table;
    table.initWith(jsonText(QJsonObject { { "Title", "t" } }));
    const ChartViewConfig config = table.config();
    QCOMPARE(config.Title, QString("t"));
    QVERIFY(config.ChartDataConfigs.isEmpty());
    QCOMPARE(config.IsSwitchXAxis, false);
    QCOMPARE(config.LegendPosition, 0);
    QCOMPARE(config.ChartType, QString());
}

void tst_TFChartViewJsonTable::badText_data()
{
    QTest::addColumn<QJsonValue>("value");
    QTest::addColumn<bool>("parseError");

    QTest::newRow("empty object text") << QJsonValue("{}") << false;
    QTest::newRow("array text") << QJsonValue("[{\"Title\":\"t\"}]") << false;
    QTest::newRow("object, not text") << QJsonValue(QJsonObject { { "Title", "t" } }) << true;
    QTest::newRow("broken text") << QJsonValue("{\"Title\":") << true;
    QTest::newRow("empty text") << QJsonValue("") << true;
}

void tst_TFChartViewJsonTable::badText()
{
    QFETCH(QJsonValue, value);
    QFETCH(bool, parseError);

    MessageLog log;
    TFChartViewJsonTable table;
    table.initWith(value);
    QCOMPARE(table.config().Title, QString());
    QCOMPARE(log.count(), parseError ? 1 : 0);
    if (parseError) {
        const QString line = log.messages(QtDebugMsg).value(0);
        QVERIFY2(line.contains(QRegularExpression("TFChartViewJsonTable::initWith\\(.*\\) Json parse error: \\S")),
                 qPrintable(line));
    }
}

void tst_TFChartViewJsonTable::badTextClearsEarlierChart()
{
    TFChartViewJsonTable table;
    table.initWith(jsonText(fullChart()));
    QCOMPARE(table.config().ChartDataConfigs.size(), 1);

    MessageLog log;
    table.initWith("{broken");
    const ChartViewConfig config = table.config();
    QCOMPARE(config.Title, QString());
    QCOMPARE(config.AnnoAngle, 0);
    QCOMPARE(config.IsSwitchXAxis, false);
    QVERIFY(config.ChartDataConfigs.isEmpty());

    table.initWith(jsonText(fullChart()));
    table.initWith("{}");
    QVERIFY(table.config().ChartDataConfigs.isEmpty());
    QCOMPARE(table.config().Title, QString());
}

QTEST_APPLESS_MAIN(tst_TFChartViewJsonTable)
#include "tst_tfchartviewjsontable.moc"
