#include "tfdatasource.h"

#include "jsonparser/tfdatajsontable.h"
#include "jsonparser/tfobjectviewjsontable.h"
#include "jsonparser/tfviewconfigtable.h"

#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegExp>
#include <QTimer>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

constexpr int kDataTable = TFBaseJsonTable::DataTable;
constexpr int kObjectViewTable = TFBaseJsonTable::ObjectViewTable;
constexpr int kViewConfigTable = TFBaseJsonTable::ViewConfigTable;

// The page draws after its context menu has gone, or the menu is in the picture.
constexpr int kImageDelayMs = 50;

const char kMicrosoftYaHei[] = "微软雅黑";

TFBaseJsonTable *newTable(int id)
{
    switch (id) {
    case kDataTable:
        return new TFDataJsonTable;
    case kObjectViewTable:
        return new TFObjectViewJsonTable;
    case kViewConfigTable:
        return new TFViewConfigTable;
    default:
        return nullptr;
    }
}

struct NamedTable
{
    const char *name;
    int id;
};

// The tables a chart reads, in the order in which they are read.
const NamedTable kChartTables[] = {
    { "Data", kDataTable },
    { "View_Config", kViewConfigTable },
    { "Object_View", kObjectViewTable },
};

ChartViewConfig withoutEntries(ChartViewConfig config)
{
    config.ChartDataConfigs.clear();
    return config;
}

QString seriesName(const ChartDataConfig &entry)
{
    if (entry.ShowUnit.isEmpty())
        return entry.LegendLable;
    return QStringLiteral("%1(%2)").arg(entry.LegendLable, entry.ShowUnit);
}

// "${FIELD}" in a legend label stands for the value of that column in the row.
QString fillPlaceholders(QString name, const QVariantMap &row)
{
    // Without "${" there is nothing to match; most names, and every name
    // after the first row, have none.
    if (!name.contains(QLatin1String("${")))
        return name;
    QRegExp reference(QStringLiteral("\\$\\{(.*)\\}"));
    reference.setMinimal(true);
    QStringList fields;
    int position = 0;
    while ((position = reference.indexIn(name, position)) != -1) {
        fields.append(reference.cap(1));
        position += qMax(1, reference.matchedLength());
    }
    for (const QString &field : qAsConst(fields)) {
        const QVariant value = row.value(field);
        name.replace(QStringLiteral("${%1}").arg(field), value.isValid() ? value.toString() : QString());
    }
    return name;
}

void putValue(QList<double> &values, double value, bool inFront)
{
    if (inFront)
        values.prepend(value);
    else
        values.append(value);
}

QJsonObject pieTitle(const QString &text, const QString &x)
{
    const QJsonObject textStyle { { QStringLiteral("fontSize"), 12 },
                                  { QStringLiteral("fontFamily"), QString::fromUtf8(kMicrosoftYaHei) },
                                  { QStringLiteral("fontWeight"), 100 } };
    return QJsonObject { { QStringLiteral("text"), text },
                         { QStringLiteral("x"), x },
                         { QStringLiteral("y"), QStringLiteral("2%") },
                         { QStringLiteral("textAlign"), QStringLiteral("center") },
                         { QStringLiteral("textStyle"), textStyle } };
}

QJsonObject pieSeries(const QString &name, const QJsonArray &data, const QString &x)
{
    const QJsonObject label { { QStringLiteral("normal"), QJsonObject { { QStringLiteral("show"), false } } },
                              { QStringLiteral("emphasis"), QJsonObject { { QStringLiteral("show"), true } } } };
    return QJsonObject { { QStringLiteral("name"), name },
                         { QStringLiteral("type"), QStringLiteral("pie") },
                         { QStringLiteral("label"), label },
                         { QStringLiteral("data"), data },
                         { QStringLiteral("center"), QJsonArray { x, QStringLiteral("50%") } } };
}

QJsonObject slice(double value, const QString &name)
{
    return QJsonObject { { QStringLiteral("value"), value }, { QStringLiteral("name"), name } };
}

QJsonArray legendOf(const QStringList &names)
{
    QJsonArray legend;
    for (const QString &name : names)
        legend.append(QJsonObject { { QStringLiteral("name"), name } });
    return legend;
}

QJsonObject valueAxis(const QString &position)
{
    return QJsonObject { { QStringLiteral("type"), QStringLiteral("value") },
                         { QStringLiteral("position"), position },
                         { QStringLiteral("splitLine"), QJsonObject { { QStringLiteral("show"), false } } },
                         { QStringLiteral("scale"), true } };
}

QByteArray compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

TFDataSource::TFDataSource(QObject *parent)
    : QObject(parent)
{
}

TFDataSource::~TFDataSource()
{
    deleteTables();
}

// Tables

TFViewConfigTable *TFDataSource::viewTable() const
{
    return qobject_cast<TFViewConfigTable *>(m_tables.value(kViewConfigTable));
}

TFChartViewJsonTable *TFDataSource::chartTable() const
{
    const TFViewConfigTable *view = viewTable();
    return view ? view->chartTable() : nullptr;
}

void TFDataSource::deleteTable(int id)
{
    delete m_tables.take(id);
}

void TFDataSource::deleteTables()
{
    qDeleteAll(m_tables);
    m_tables.clear();
}

void TFDataSource::readTables(const QJsonObject &document)
{
    for (const NamedTable &named : kChartTables) {
        const QString name = QLatin1String(named.name);
        if (!document.contains(name))
            continue;
        TFBaseJsonTable *table = newTable(named.id);
        table->initWith(document.value(name));
        deleteTable(table->tableType());
        m_tables.insert(table->tableType(), table);
    }
}

void TFDataSource::emptySeries()
{
    m_series.clear();
    m_labels.clear();
}

// Operations of the chart view

void TFDataSource::loadConfig(const QJsonValue &value)
{
    deleteTables();
    readTables(value.toObject());
    const TFChartViewJsonTable *chart = chartTable();
    if (!chart) {
        m_chart = ChartViewConfig();
        return;
    }
    const ChartViewConfig config = chart->config();
    m_chart = withoutEntries(config);
    if (!config.IsSwitchXAxis) {
        // The labels of this pass are thrown away; the series stay.
        QStringList labels;
        buildColumnSeries(config, selectedRows(config), m_series, labels);
    }
}

void TFDataSource::loadConfigAndData(const QJsonValue &value)
{
    emptySeries();
    deleteTable(kDataTable);
    emit signalClear();
    readTables(value.toObject());
    orderAndBuild();
}

void TFDataSource::setRows(const QList<QVariantMap> &rows)
{
    emptySeries();
    deleteTable(kDataTable);
    emit signalClear();
    if (!rows.isEmpty()) {
        auto *table = new TFDataJsonTable;
        table->setRows(rows);
        m_tables.insert(kDataTable, table);
    }
    orderAndBuild();
}

void TFDataSource::clear()
{
    emptySeries();
    deleteTable(kDataTable);
    emit signalClear();
}

QString TFDataSource::caption() const
{
    const auto *objectView = qobject_cast<TFObjectViewJsonTable *>(m_tables.value(kObjectViewTable));
    return objectView ? objectView->name() : QString();
}

bool TFDataSource::isCross() const
{
    const TFViewConfigTable *view = viewTable();
    return view && view->isCross();
}

bool TFDataSource::isFilterShown() const
{
    const TFViewConfigTable *view = viewTable();
    return view && view->isShowFilter();
}

bool TFDataSource::isgetchartdata() const
{
    const TFViewConfigTable *view = viewTable();
    return view ? view->isGetChartData() : true;
}

FilterParam::DataSourceFilter TFDataSource::order() const
{
    const TFViewConfigTable *view = viewTable();
    if (!view)
        return {};
    const QPair<QString, QVariant> pair = view->orderProperty();
    return FilterParam::DataSourceFilter { pair.first, pair.second };
}

QList<TFTableModelData::FilterData> TFDataSource::filterList() const
{
    const TFViewConfigTable *view = viewTable();
    const TFFilterJsonTable *filters = view ? view->filterTable() : nullptr;
    return filters ? filters->filters() : QList<TFTableModelData::FilterData>();
}

bool TFDataSource::isFilterLive(const QString &name) const
{
    const QList<TFTableModelData::FilterData> filters = filterList();
    for (const TFTableModelData::FilterData &filter : filters) {
        if (filter.FieldName == name)
            return filter.ClassName != QLatin1String("LabelControl") && filter.ShowValue == QLatin1String("1");
    }
    return false;
}

// Series step

QList<QVariantMap> TFDataSource::selectRows(const QList<QVariantMap> &rows, int mode, int step)
{
    if (rows.size() <= 1 || mode == 1)
        return rows;
    if (step <= 0)
        return {};
    if (step >= rows.size())
        return rows;
    switch (mode) {
    case 2:
        return rows.mid(0, step);
    case 3: {
        QList<QVariantMap> every;
        for (int i = step - 1; i < rows.size(); i += step)
            every.append(rows.at(i));
        return every;
    }
    case 4:
        return rows.mid(rows.size() - step);
    default:
        return {};
    }
}

QList<QVariantMap> TFDataSource::selectedRows(const ChartViewConfig &config) const
{
    const auto *data = qobject_cast<TFDataJsonTable *>(m_tables.value(kDataTable));
    if (!data)
        return {};
    return selectRows(data->rows(), config.XDisplayDataPattern, config.XDisplayStep);
}

ChartViewConfig TFDataSource::crossExpand(const QList<QVariantMap> &rows, const ChartViewConfig &config)
{
    if (rows.isEmpty() || rows.first().isEmpty())
        return config;
    const QStringList keys = rows.first().keys();   // a map's keys come sorted
    ChartViewConfig expanded = config;
    expanded.ChartDataConfigs.clear();
    for (ChartDataConfig entry : config.ChartDataConfigs) {
        const QString pattern = QStringLiteral("__%1").arg(entry.FieldName);
        const QString legend = entry.LegendLable;
        // The entry changes as it goes: once a group column has matched, the
        // plain column of the field no longer does.
        for (const QString &key : keys) {
            if (key.endsWith(pattern)) {
                entry.LegendLable = key.left(key.indexOf(QLatin1String("__"))) + legend;
                entry.FieldName = key;
                expanded.ChartDataConfigs.append(entry);
            } else if (key == entry.FieldName) {
                expanded.ChartDataConfigs.append(entry);
            }
        }
    }
    return expanded;
}

void TFDataSource::orderAndBuild()
{
    const TFChartViewJsonTable *chart = chartTable();
    if (!chart)
        return;
    // The snapshot stays the one of the last configuration step.
    const ChartViewConfig config = chart->config();
    QList<QVariantMap> rows = selectedRows(config);

    if (isCross()) {
        buildSeries(crossExpand(rows, config), rows, m_series, m_labels);
        return;
    }
    const TFViewConfigTable *view = viewTable();
    const bool isOrder = view && view->isOrder();
    const bool getChartData = isgetchartdata();
    if (config.IsSwitchXAxis || (isOrder && getChartData)) {
        buildSeries(config, rows, m_series, m_labels);
        return;
    }

    QString key = config.XFieldName;
    bool ascending = getChartData && config.XValueType == QLatin1String("DateTime");
    if (isOrder) {
        const FilterParam::DataSourceFilter pair = order();
        const QJsonObject fields = pair.value.toJsonObject();
        if (!pair.key.isNull() && !pair.value.isNull() && !fields.isEmpty()) {
            key = fields.constBegin().key();
            ascending = fields.constBegin().value().toInt() == 1;
        }
    } else if (config.XValueType == QLatin1String("String") && !config.IsTurnXAxis) {
        buildSeries(config, rows, m_series, m_labels);
        return;
    }

    // A stable merge sort: variants of mixed types need not order strictly,
    // and a merge never reads past its range whatever the comparison says.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    std::stable_sort(rows.begin(), rows.end(), [&key, ascending](const QVariantMap &a, const QVariantMap &b) {
        const QVariant left = a.value(key);
        const QVariant right = b.value(key);
        return ascending ? left < right : left > right;
    });
    QT_WARNING_POP
    buildSeries(config, rows, m_series, m_labels);
}

void TFDataSource::buildSeries(const ChartViewConfig &config, const QList<QVariantMap> &rows,
                               QList<ChartSeries> &series, QStringList &labels) const
{
    if (!config.IsSwitchXAxis)
        buildColumnSeries(config, rows, series, labels);
    else if (config.ChartType.toLower() == QLatin1String("pie"))
        buildPivotPieSeries(config, rows, series, labels);
    else
        buildRowSeries(config, rows, series, labels);
}

QString TFDataSource::labelText(const ChartViewConfig &config, const QVariant &value) const
{
    const QString text = value.toString();
    if (config.XValueType != QLatin1String("DateTime"))
        return text;
    // A view that takes the table's rows may carry dates as text already.
    const TFViewConfigTable *view = viewTable();
    if (view && !view->isGetChartData()) {
        bool isInteger = false;
        value.toString().toLongLong(&isInteger);
        if (!isInteger)
            return text;
    }
    const QString format = config.XItemNamesFormat.isEmpty() ? QStringLiteral("yyyy/M/d") : config.XItemNamesFormat;
    return QDateTime::fromMSecsSinceEpoch(value.toLongLong()).toString(format);
}

void TFDataSource::buildColumnSeries(const ChartViewConfig &config, const QList<QVariantMap> &rows,
                                     QList<ChartSeries> &series, QStringList &labels) const
{
    for (int index = 0; index < config.ChartDataConfigs.size(); ++index) {
        const ChartDataConfig &entry = config.ChartDataConfigs.at(index);
        ChartSeries record;
        record.index = index;
        record.xName = config.XFieldName;
        record.visible = entry.IsVisible;
        record.chartType = entry.ChartType;
        record.valueFormat = entry.ValueFormatString;
        record.stackGroup = entry.SetStackGroup;
        record.yAxisSide = entry.YShaftType == QLatin1String("Right") ? 1 : 0;
        record.name = seriesName(entry);

        bool anyLabel = false;
        for (const QVariantMap &row : rows) {
            if (index == 0) {
                // The first series alone writes the labels and fills its name.
                const QString text = labelText(config, row.value(config.XFieldName));
                anyLabel = anyLabel || !row.value(config.XFieldName).toString().isEmpty();
                if (config.IsTurnXAxis)
                    labels.prepend(text);
                else
                    labels.append(text);
                record.name = fillPlaceholders(record.name, row);
            }
            putValue(record.values, dataPoint(entry, row), config.IsTurnXAxis);
        }
        if (index == 0 && !anyLabel) {
            labels.clear();
            return;
        }
        record.xLabels = labels;
        series.append(record);
    }
}

void TFDataSource::buildRowSeries(const ChartViewConfig &config, const QList<QVariantMap> &rows,
                                  QList<ChartSeries> &series, QStringList &labels) const
{
    if (config.ChartDataConfigs.isEmpty())
        return;
    const ChartDataConfig &first = config.ChartDataConfigs.first();
    int index = 0;
    for (const QVariantMap &row : rows) {
        ChartSeries record;
        record.index = index++;
        record.xName = first.LegendLable;
        record.visible = first.IsVisible;
        record.chartType = first.ChartType;
        record.yAxisSide = first.YShaftType == QLatin1String("Right") ? 1 : 0;
        record.name = row.value(config.XFieldName).toString();
        QStringList names;
        for (const ChartDataConfig &entry : config.ChartDataConfigs) {
            // A scaled value is read from the first entry's column.
            record.values.append(dataPoint(entry, row, first.FieldName));
            names.append(entry.LegendLable);
        }
        labels = names;
        record.xLabels = names;
        series.append(record);
    }
}

void TFDataSource::buildPivotPieSeries(const ChartViewConfig &config, const QList<QVariantMap> &rows,
                                       QList<ChartSeries> &series, QStringList &labels) const
{
    int index = 0;
    bool anyLabel = false;
    for (const QVariantMap &row : rows) {
        const QString x = row.value(config.XFieldName).toString();
        for (const ChartDataConfig &entry : config.ChartDataConfigs) {
            ChartSeries record;
            record.index = index++;
            record.xName = x;
            record.visible = entry.IsVisible;
            record.chartType = entry.ChartType;
            record.valueFormat = entry.ValueFormatString;
            record.stackGroup = entry.SetStackGroup;
            record.yAxisSide = entry.YShaftType == QLatin1String("Right") ? 1 : 0;
            record.name = seriesName(entry);
            putValue(record.values, dataPoint(entry, row), config.IsTurnXAxis);
            series.append(record);
        }
        anyLabel = anyLabel || !x.isEmpty();
        labels.append(x);
    }
    if (!anyLabel)
        labels.clear();
}

double TFDataSource::dataPoint(const ChartDataConfig &entry, const QVariantMap &row, const QString &scaledField)
{
    const bool scaled = entry.UnitCategory != 0 && entry.UnitCategory != -1 && entry.ShowUnitFactor != 0;
    const QString field = scaled && !scaledField.isNull() ? scaledField : entry.FieldName;
    const double value = row.value(field).toDouble();
    const double point = scaled ? value * double(entry.PrevUnitFactor) / entry.ShowUnitFactor : value;
    return roundValue(point, entry.ValueFormatString);
}

// A value rounded to a number of decimals as if it were written with
// QString::number(value, 'f', decimals) and read back: both are correctly
// rounded conversions, which agree except for an exact tie, where the
// toolkit's rule is taken by going through its text. A tie is exactly
// representable and no shorter text reads back as it, so its shortest text
// ends in a 5 right after the kept decimals; every such value goes the slow
// way. Zero results do too, for the sign of a negative zero.
static double fixedRound(double value, int decimals)
{
    if (std::isfinite(value) && value != 0.0) {
        char shortest[420];
        const std::to_chars_result text = std::to_chars(shortest, shortest + sizeof(shortest), value,
                                                         std::chars_format::fixed);
        if (text.ec == std::errc()) {
            const char *point = std::find(shortest, text.ptr, '.');
            const int shown = point == text.ptr ? 0 : int(text.ptr - point - 1);
            if (shown <= decimals)
                return value;   // already within the decimals: its text reads back as it
            const bool maybeTie = shown == decimals + 1 && *(text.ptr - 1) == '5';
            char kept[420];
            const std::to_chars_result rounded = std::to_chars(kept, kept + sizeof(kept), value,
                                                                std::chars_format::fixed, decimals);
            double result = 0.0;
            if (!maybeTie && rounded.ec == std::errc()
                && std::from_chars(kept, rounded.ptr, result).ec == std::errc() && result != 0.0)
                return result;
        }
    }
    return QString::number(value, 'f', decimals).toDouble();
}

double TFDataSource::roundValue(double value, const QString &format)
{
    if (format.isEmpty()) {
        // Whether six significant digits leave a fraction.
        char general[64];
        const std::to_chars_result text = std::to_chars(general, general + sizeof(general), value,
                                                         std::chars_format::general, 6);
        const bool fraction = text.ec == std::errc()
            ? std::find(general, text.ptr, '.') != text.ptr
            : QString::number(value, 'g', 6).contains(QLatin1Char('.'));
        if (!fraction)
            return value;
        return fixedRound(value, 2);
    }
    // "n2", "N0": a letter n or N, or a comma, which the character class
    // of the pattern ^([n,N])(\d)$ lets through, and one digit.
    if (format.size() != 2)
        return value;
    const QChar kind = format.at(0);
    const QChar digit = format.at(1);
    if ((kind != QLatin1Char('n') && kind != QLatin1Char('N') && kind != QLatin1Char(',')) || !digit.isDigit())
        return value;
    // Any digit matches, but only 0 to 9 read as a number; others give 0.
    const int decimals = digit.unicode() >= '0' && digit.unicode() <= '9' ? digit.unicode() - '0' : 0;
    return fixedRound(value, decimals);
}

// Message step

QString TFDataSource::seriesType(const QString &chartType)
{
    if (chartType.isEmpty())
        return QStringLiteral("bar");
    if (m_typeMap.isEmpty()) {
        const QString line = QStringLiteral("line");
        const QString bar = QStringLiteral("bar");
        m_typeMap.insert(QStringLiteral("XYPlot"), QStringLiteral("scatter"));
        m_typeMap.insert(QStringLiteral("Line"), line);
        m_typeMap.insert(QStringLiteral("LineSymbols"), line);
        m_typeMap.insert(QStringLiteral("LineSmoothed"), line);
        m_typeMap.insert(QStringLiteral("Area"), line);
        m_typeMap.insert(QStringLiteral("AreaStacked"), line);
        m_typeMap.insert(QStringLiteral("AreaStacked100pc"), line);
        m_typeMap.insert(QStringLiteral("Pie"), QStringLiteral("pie"));
        m_typeMap.insert(QStringLiteral("ColumnStacked"), bar);
        m_typeMap.insert(QStringLiteral("Column"), bar);
    }
    return m_typeMap.value(chartType, QStringLiteral("bar"));
}

QByteArray TFDataSource::mixedMessage()
{
    QJsonArray seriesArray;
    QJsonArray legend;
    bool rightAxis = false;
    for (const ChartSeries &one : qAsConst(m_series)) {
        if (!one.visible)
            continue;
        QJsonObject object { { QStringLiteral("name"), one.name },
                             { QStringLiteral("type"), seriesType(one.chartType) } };
        if (one.chartType.contains(QLatin1String("Area"))) {
            object.insert(QStringLiteral("smooth"), true);
            object.insert(QStringLiteral("areaStyle"), QJsonObject { { QStringLiteral("normal"), QJsonObject() } });
        } else if (one.chartType == QLatin1String("LineSmoothed")) {
            object.insert(QStringLiteral("smooth"), true);
        } else if (one.chartType.contains(QLatin1String("Column"))) {
            object.insert(QStringLiteral("barGap"), 0);
        }
        if (one.chartType == QLatin1String("ColumnStacked") && one.stackGroup > 0)
            object.insert(QStringLiteral("stack"), one.stackGroup);
        if (one.yAxisSide == 1) {
            object.insert(QStringLiteral("yAxisIndex"), 1);
            rightAxis = true;
        }
        QJsonArray data;
        for (double value : one.values)
            data.append(value);
        object.insert(QStringLiteral("data"), data);
        seriesArray.append(object);
        legend.append(QJsonObject { { QStringLiteral("name"), one.name } });
    }
    QJsonArray yAxis { valueAxis(QStringLiteral("left")) };
    if (rightAxis)
        yAxis.append(valueAxis(QStringLiteral("right")));

    const QJsonObject message {
        { QStringLiteral("xData"), QJsonArray::fromStringList(m_labels) },
        { QStringLiteral("xAxisLabel"),
          QJsonObject { { QStringLiteral("interval"), QStringLiteral("auto") }, { QStringLiteral("rotate"), 0 } } },
        { QStringLiteral("series"), seriesArray },
        { QStringLiteral("legend"), legend },
        { QStringLiteral("legendPostion"), m_chart.LegendPosition },
        { QStringLiteral("yAxis"), yAxis },
    };
    return compact(message);
}

QByteArray TFDataSource::pieMessage() const
{
    if (m_series.isEmpty())
        return QByteArray();
    const int step = 100 / (m_series.size() + 1);
    QJsonArray seriesArray;
    QJsonArray titles;
    for (int i = 1; i <= m_series.size(); ++i) {
        const ChartSeries &one = m_series.at(i - 1);
        const QString x = QStringLiteral("%1%").arg(i * step);
        QJsonArray data;
        for (int j = 0; j < one.values.size(); ++j)
            data.append(slice(one.values.at(j), m_labels.value(j)));
        seriesArray.append(pieSeries(one.name, data, x));
        titles.append(pieTitle(one.name, x));
    }
    const QJsonObject message { { QStringLiteral("axisShow"), false },
                                { QStringLiteral("series"), seriesArray },
                                { QStringLiteral("legend"), legendOf(m_labels) },
                                { QStringLiteral("legendPostion"), m_chart.LegendPosition },
                                { QStringLiteral("title"), titles } };
    return compact(message);
}

QByteArray TFDataSource::pivotPieMessage() const
{
    if (m_labels.isEmpty() || m_series.isEmpty())
        return QByteArray();
    const int step = 100 / (m_labels.size() + 1);
    QJsonArray seriesArray;
    QJsonArray titles;
    QStringList names;      // without duplicates, in the order met
    for (int i = 1; i <= m_labels.size(); ++i) {
        const QString &label = m_labels.at(i - 1);
        const QString x = QStringLiteral("%1%").arg(i * step);
        QJsonArray data;
        for (const ChartSeries &one : m_series) {
            if (one.xName != label)
                continue;
            // Each value goes in at its own position; one-point series put
            // every new slice in front.
            for (int p = 0; p < one.values.size(); ++p)
                data.insert(qMin(p, int(data.size())), slice(one.values.at(p), one.name));
            if (!names.contains(one.name))
                names.append(one.name);
        }
        seriesArray.append(pieSeries(label, data, x));
        titles.append(pieTitle(label, x));
    }
    const QJsonObject message { { QStringLiteral("axisShow"), false },
                                { QStringLiteral("series"), seriesArray },
                                { QStringLiteral("legend"), legendOf(names) },
                                { QStringLiteral("legendPostion"), m_chart.LegendPosition },
                                { QStringLiteral("title"), titles } };
    return compact(message);
}

// Slots of the page

void TFDataSource::slotWebConnectFinished()
{
    emit signalCanShowChart();
}

void TFDataSource::slotRefreshChartDaTa()
{
    if (m_chart.ChartType.toLower() != QLatin1String("pie")) {
        emit signalMixedChartData(mixedMessage());
        return;
    }
    const QByteArray message = m_chart.IsSwitchXAxis ? pivotPieMessage() : pieMessage();
    if (!message.isEmpty())
        emit signalPieData(message);
}

void TFDataSource::slotChangedTheme(QByteArray theme)
{
    emit signalChangeTheme(theme);
}

void TFDataSource::saveImage()
{
    QTimer::singleShot(kImageDelayMs, this, [this] { emit signalSaveImage(QString()); });
}

void TFDataSource::copyImage()
{
    QTimer::singleShot(kImageDelayMs, this, [this] { emit signalCopyImage(); });
}

void TFDataSource::printImage()
{
    QTimer::singleShot(kImageDelayMs, this, [this] { emit signalPrintImage(); });
}

void TFDataSource::slotAlert(QString text)
{
    Q_UNUSED(text)
}
