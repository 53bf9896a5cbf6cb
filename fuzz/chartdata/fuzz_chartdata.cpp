// Drives the chart data builder with configuration and rows from the input.
// The first byte chooses the view's flags; the rest is used three ways:
//   - as a whole document through the configuration step and the ordering
//     step, then as the rows of a table;
//   - as the chart's own JSON text inside a document with rows of mixed
//     types (numbers, texts, dates, nulls, group columns);
//   - as the rows of a reply for a fixed chart of each mode.
// After each step every message is built.

#include "echarts/tfdatasource.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtGlobal>

#include <cstddef>
#include <cstdint>

// Qt 5.15's QJsonDocument::fromJson leaks the earlier value of a key that an
// object repeats ({"a":{},"a":{}}), inside QtCore; leaks of our own objects
// are still reported.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libQt5Core.so\n";
}

static void dropMessage(QtMsgType, const QMessageLogContext &, const QString &)
{
}

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    static QCoreApplication *app = new QCoreApplication(*argc, *argv);
    Q_UNUSED(app);
    qInstallMessageHandler(dropMessage);
    return 0;
}

static QJsonArray propertyRows(uint8_t flags)
{
    QJsonArray rows;
    auto add = [&rows](const char *name, const QJsonValue &value) {
        rows.append(QJsonObject { { "obj_vw_id", 1 }, { "prop_typ", "" }, { "prop_name", name }, { "prop_val", value } });
    };
    add("IsCross", (flags & 1) ? "1" : "0");
    add("isorder", (flags & 2) ? "1" : "0");
    add("IsGetChartData", (flags & 4) ? "1" : "0");
    add("isShowFilter", bool(flags & 8));
    if (flags & 16)
        add("order", (flags & 32) ? "V desc,X asc" : "X asc");
    return rows;
}

static QJsonObject document(uint8_t flags, const QString &chartText, const QJsonValue &rows)
{
    QJsonArray viewConfig = propertyRows(flags);
    viewConfig.append(QJsonObject { { "obj_vw_id", 1 }, { "prop_typ", "EXTEND" }, { "prop_name", "ChartViewConfig" },
                                    { "ext_prop_val", chartText } });
    viewConfig.append(QJsonObject { { "obj_vw_id", 1 }, { "prop_typ", "EXTEND" }, { "prop_name", "filters" },
                                    { "ext_prop_val", R"([{"FieldName":"V","ClassName":"X","ShowValue":"1"}])" } });
    return QJsonObject { { "Data", rows }, { "View_Config", viewConfig },
                         { "Object_View", QJsonArray { QJsonObject { { "obj_vw_name", "c" } } } } };
}

static void buildAll(TFDataSource &source)
{
    source.mixedMessage();
    source.pieMessage();
    source.pivotPieMessage();
    source.slotRefreshChartDaTa();
    source.isFilterLive(QStringLiteral("V"));
    source.order();
    source.caption();
}

static const char *const kCharts[] = {
    R"({"ChartType":"Line","XFieldName":"X","XValueType":"DateTime","XDisplayDataPattern":1,"IsTurnXAxis":true,
        "ChartDataConfigs":[{"FieldName":"V","LegendLable":"v ${X}","ChartType":"AreaStacked","IsVisible":true,"ValueFormatString":"n2",
        "UnitCategory":1,"PrevUnitFactor":3,"ShowUnitFactor":7,"ShowUnit":"u"},
        {"FieldName":"W","LegendLable":"w","ChartType":"ColumnStacked","SetStackGroup":1,"IsVisible":true,"YShaftType":"Right"}]})",
    R"({"ChartType":"Pie","XFieldName":"X","XValueType":"String","XDisplayDataPattern":3,"XDisplayStep":2,
        "ChartDataConfigs":[{"FieldName":"V","LegendLable":"v","ChartType":"Pie"},{"FieldName":"W","ChartType":"Pie"}]})",
    R"({"ChartType":"pie","XFieldName":"X","IsSwitchXAxis":true,"XDisplayDataPattern":4,"XDisplayStep":3,
        "ChartDataConfigs":[{"FieldName":"V","LegendLable":"v","ChartType":"Pie"},{"FieldName":"W","ChartType":"Pie"}]})",
    R"({"ChartType":"Column","XFieldName":"X","IsSwitchXAxis":true,"XDisplayDataPattern":2,"XDisplayStep":5,
        "ChartDataConfigs":[{"FieldName":"V","LegendLable":"v","ChartType":"Column","IsVisible":true,
        "UnitCategory":2,"PrevUnitFactor":1,"ShowUnitFactor":0.5},{"FieldName":"W","ChartType":"XYPlot","IsVisible":true}]})",
};

static const char kRows[] = R"([{"X":1704067200000,"V":1.5,"W":"2","A__V":3},{"X":"b","V":"x","W":null},
    {"X":-1e300,"V":1e308,"W":-0.0,"B__V":true},{},{"X":"","V":[1],"W":{"a":1}},{"X":"c","V":-7.25,"W":12}])";

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const uint8_t flags = data[0];
    const QByteArray input(reinterpret_cast<const char *>(data + 1), int(size - 1));
    const QJsonDocument parsed = QJsonDocument::fromJson(input);
    const QJsonValue value = parsed.isArray() ? QJsonValue(parsed.array()) : QJsonValue(parsed.object());

    {
        TFDataSource source;
        source.loadConfig(value);
        buildAll(source);
        source.loadConfigAndData(value);
        buildAll(source);
        QList<QVariantMap> rows;
        const QJsonArray array = parsed.array();
        for (const QJsonValue row : array)
            rows.append(row.toObject().toVariantMap());
        source.setRows(rows);
        buildAll(source);
    }
    {
        const QJsonArray rows = QJsonDocument::fromJson(QByteArray(kRows)).array();
        TFDataSource source;
        const QJsonObject doc = document(flags, QString::fromUtf8(input), rows);
        source.loadConfig(doc);
        buildAll(source);
        source.loadConfigAndData(doc);
        buildAll(source);
    }
    if (parsed.isArray()) {
        const QString chart = QString::fromUtf8(kCharts[flags % (sizeof(kCharts) / sizeof(kCharts[0]))]);
        TFDataSource source;
        source.loadConfig(document(flags, chart, QJsonArray()));
        source.loadConfigAndData(document(flags, chart, parsed.array()));
        buildAll(source);
    }
    return 0;
}
