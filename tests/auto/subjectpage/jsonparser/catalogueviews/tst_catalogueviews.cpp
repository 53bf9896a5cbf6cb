#include "jsonparser/tfchartviewjsontable.h"
#include "jsonparser/tfchildviewjsontable.h"
#include "jsonparser/tffilterjsontable.h"
#include "jsonparser/tfheaderfieldconfigdata.h"
#include "jsonparser/tfjsonparser.h"
#include "jsonparser/tfobjectviewconfigtable.h"
#include "jsonparser/tfsummaryjsontable.h"
#include "jsonparser/tfviewconfigtable.h"
#include "mulittable/tfheaderdatastruct.h"

#include "subjectservice.h"

#include "../../shared/viewconfigurationrequest.h"

#include "../shared/messagelog.h"

#include <QDir>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <memory>

using TFSubject::TFJsonParser;

// Each view of the demo catalogue is asked for its configuration the way
// the page asks for it (flag 0) from a service on 127.0.0.1, and the tables
// the parser makes of the reply are compared with what the view's file
// says. Only what a file states is checked, so the service's own defaults
// for what a file leaves out are not restated here.
class tst_CatalogueViews : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void view_data();
    void view();

private:

    QTemporaryDir m_databaseDir;
    std::unique_ptr<SubjectService::Server> m_server;
};

static TFTreeStruct* bandTree()
{
    // parseConfig builds the band header into the tree it is given.
    static TFTreeStruct tree { QString() };
    return &tree;
}

void tst_CatalogueViews::initTestCase()
{
    QVERIFY(m_databaseDir.isValid());
    SubjectService::Options options;
    options.dbPath = m_databaseDir.filePath("catalogue.sqlite");
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
}

void tst_CatalogueViews::cleanupTestCase()
{
    if (m_server)
        m_server->stop();
}

void tst_CatalogueViews::view_data()
{
    QTest::addColumn<QJsonObject>("file");

    // The view files as the service was built with them: its catalogue is
    // compiled into its resources, and registered once the service starts.
    const QDir dir(QStringLiteral(":/catalogue/views"));
    const QStringList names = dir.entryList({ "*.json" }, QDir::Files, QDir::Name);
    QVERIFY(!names.isEmpty());
    for (const QString& name : names) {
        QFile file(dir.filePath(name));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QJsonObject view = QJsonDocument::fromJson(file.readAll()).object();
        QVERIFY2(!view.isEmpty(), qPrintable(name));
        QTest::newRow(qPrintable(name + " " + view.value("name").toString())) << view;
    }
}

// The column kinds of a view file as the wire names them.
static QString columnTypeOfKind(const QString& kind)
{
    static const QMap<QString, QString> kinds { { "unit", "BandedGridColumnWithUnit" }, { "link", "HyperLinkEdit" },
                                                { "memo", "MemoExEdit" }, { "rating", "BandedGridColumnWithRating" } };
    return kinds.value(kind, kind);
}

// Compares one column of a view file with the field read from the wire;
// returns an empty text or what differs.
static QString compareColumn(const QJsonObject& column, const HeaderFieldInfo& field, const QString& ownerBand)
{
    QStringList differences;
    auto expect = [&differences](const char* what, const QVariant& expected, const QVariant& actual) {
        if (expected != actual)
            differences.append(QString("%1: %2 != %3").arg(what, expected.toString(), actual.toString()));
    };
    const bool isBand = column.contains("band");
    expect("FieldName", column.value(isBand ? "band" : "field").toString(), field.fieldName);
    if (ownerBand.isEmpty())
        expect("OwnerBand at the top", true, field.ownerBand.isEmpty() || field.ownerBand == "0");
    else
        expect("OwnerBand", ownerBand, field.ownerBand);
    if (column.contains("caption"))
        expect("Caption", column.value("caption").toString(), field.caption);
    if (isBand)
        expect("ColumnType", QString("Band"), field.columnType);
    else if (column.contains("kind"))
        expect("ColumnType", columnTypeOfKind(column.value("kind").toString()), field.columnType);
    if (column.contains("type"))
        expect("ValueType", column.value("type").toString(), field.valueType);
    if (column.contains("width"))
        expect("Width", int(column.value("width").toDouble()), field.width);
    if (column.contains("format"))
        expect("FormatString", column.value("format").toString(), field.formatString);
    if (column.contains("align"))
        expect("TextAlignment", column.value("align").toInt(), field.textAlignment);
    if (column.contains("url"))
        expect("Url", column.value("url").toString(), field.url);
    if (column.contains("expression"))
        expect("UnboundExpression", column.value("expression").toString(), field.unboundExpression);
    if (column.contains("style"))
        expect("CellStyleExpression", column.value("style").toString(), field.cellStyleExpression);
    if (column.contains("noSort"))
        expect("NoSort", column.value("noSort").toBool(), field.noSort);
    if (column.contains("stat"))
        expect("StatExpression", column.value("stat").toString(), field.statExpression);
    const QJsonObject unit = column.value("unit").toObject();
    if (unit.contains("category"))
        expect("UnitCategory", unit.value("category").toInt(), field.unitCategory);
    if (unit.contains("show"))
        expect("ShowUnit", unit.value("show").toString(), field.showUnit);
    if (unit.contains("factor"))
        expect("ShowUnitFactor", qint64(unit.value("factor").toDouble()), field.showUnitFactor);
    if (unit.contains("prev"))
        expect("PrevUnitFactor", qint64(unit.value("prev").toDouble()), field.prevUnitFactor);
    if (unit.contains("captionShow"))
        expect("CaptionShowType", unit.value("captionShow").toInt(), field.captionShowType);
    return differences.join("; ");
}

// The columns of a file in the order of the wire's list: each band before
// its own columns, with the band it belongs to.
static void flattenColumns(const QJsonArray& columns, const QString& ownerBand,
                           QList<QPair<QJsonObject, QString>>* out)
{
    for (const QJsonValue& value : columns) {
        const QJsonObject column = value.toObject();
        out->append(qMakePair(column, ownerBand));
        if (column.contains("band"))
            flattenColumns(column.value("columns").toArray(), column.value("band").toString(), out);
    }
}

static bool isFlagOn(const QJsonValue& value)
{
    return value.isDouble() ? value.toDouble() == 1 : value.toString().toInt() == 1;
}

void tst_CatalogueViews::view()
{
    QFETCH(QJsonObject, file);
    const qint64 viewId = qint64(file.value("id").toDouble());
    const QJsonObject properties = file.value("properties").toObject();

    const QJsonObject envelope = fetchViewConfiguration(m_server->baseUrl(), viewId);
    QCOMPARE(envelope.value("state").toInt(), 1);
    const QJsonValue document = envelope.value("data");
    QVERIFY(document.isObject());

    MessageLog log;
    TFJsonParser parser;
    QSignalSpy announced(&parser, &TFJsonParser::signalSubTableJsonData);
    QVERIFY(parser.parseConfig(document, bandTree()));
    // Every JSON text inside the document parses; the header's line for a
    // band that hands its unit factors down is no parse error.
    QStringList debug = log.messages(QtDebugMsg);
    debug.erase(std::remove_if(debug.begin(), debug.end(),
                               [](const QString& line) { return line.startsWith("unit test:"); }),
                debug.end());
    QCOMPARE(debug, QStringList());

    // Name and view.
    QCOMPARE(parser.objectViewName(), file.value("name").toString());
    TFViewConfigTable* view = parser.viewConfigTable();
    QVERIFY(view);
    QCOMPARE(qint64(view->viewId()), viewId);

    // Properties the view acts on.
    const bool cross = file.contains("cross");
    const QJsonArray children = file.value("children").toArray();
    QCOMPARE(parser.isCross(), cross);
    QCOMPARE(parser.isShowChild(),
             properties.contains("isShowChild") ? isFlagOn(properties.value("isShowChild")) : !children.isEmpty());
    QCOMPARE(view->isShowFilter(), properties.value("isShowFilter").toBool());
    QCOMPARE(view->isGetChartData(), isFlagOn(properties.value("IsGetChartData")));
    QCOMPARE(view->isOrder(), isFlagOn(properties.value("IsOrder")));
    QCOMPARE(parser.isGroup(), isFlagOn(properties.value("IsGroup")));
    QCOMPARE(parser.frozenCount(), properties.value("FrozenCount").toInt());
    QCOMPARE(parser.vGridColHeaderField(), properties.value("VGridColHeaderField").toString());
    QCOMPARE(view->groupFields(), properties.value("GroupFields").toString());
    QCOMPARE(view->groupFormatString(), properties.value("GroupFormatString").toString());
    QCOMPARE(view->sectorNum(), properties.value("SectorNum").toString());
    QCOMPARE(view->rootSectorNum(), properties.value("RootSectorNum").toString());
    const QString order = properties.value("order").toString();
    if (order.isEmpty()) {
        QVERIFY(parser.orderProperty().second.isNull());
    } else {
        QJsonObject expectedOrder;
        for (const QString& term : order.split(',', Qt::SkipEmptyParts)) {
            const QStringList parts = term.split(' ', Qt::SkipEmptyParts);
            expectedOrder.insert(parts.at(0), parts.at(1).compare("desc", Qt::CaseInsensitive) == 0 ? -1 : 1);
        }
        QCOMPARE(parser.orderProperty().first, QString("order"));
        QCOMPARE(parser.orderProperty().second.value<QJsonObject>(), expectedOrder);
    }

    // Paging of the first page.
    const int pageSize = properties.contains("pageSize") ? properties.value("pageSize").toInt() : 200;
    QCOMPARE(parser.pageSize(), pageSize);
    QCOMPARE(parser.pageIndex(), 1);
    QVERIFY(parser.dataMaps().size() <= pageSize);
    QVERIFY(parser.rowCount() >= parser.dataMaps().size());

    // Filters, key by key as the file writes them.
    const QJsonArray filters = file.value("filters").toArray();
    const QList<TFTableModelData::FilterData> filterData = parser.filterData();
    QCOMPARE(filterData.size(), filters.size());
    for (int i = 0; i < filters.size(); ++i) {
        const QJsonObject expected = filters.at(i).toObject();
        const TFTableModelData::FilterData& actual = filterData.at(i);
        QCOMPARE(actual.ClassName, expected.value("ClassName").toString());
        QCOMPARE(actual.Caption, expected.value("Caption").toString());
        QCOMPARE(actual.FieldName, expected.value("FieldName").toString());
        QCOMPARE(actual.DefualtValue, expected.value("DefualtValue").toString());
        QCOMPARE(actual.Operator, expected.value("Operator").toString());
        QCOMPARE(actual.ValueType, expected.value("ValueType").toString());
        QCOMPARE(actual.NameValues, expected.value("NameValues").toString());
        QCOMPARE(actual.ControlParameters, expected.value("ControlParameters").toString());
        QCOMPARE(actual.DataSourceName, expected.value("DataSourceName").toString());
        QCOMPARE(actual.DataSourceFilter, expected.value("DataSourceFilter").toString());
        QCOMPARE(actual.DataSourceFilterParams, expected.value("DataSourceFilterParams").toString());
        QCOMPARE(actual.Width, expected.value("Width").toInt());
        QCOMPARE(actual.UnitCategory, int(expected.value("UnitCategory").toDouble()));
        QCOMPARE(actual.ParameterCategory, QString::number(expected.value("ParameterCategory").toDouble(), 'g', 6));
    }

    // Child views: kept in order, and announced while the document was read.
    TFChildViewJsonTable* childTable = view->childTable();
    QCOMPARE(childTable != nullptr, !children.isEmpty());
    QCOMPARE(announced.count(), children.size());
    for (int i = 0; i < children.size(); ++i) {
        const QJsonObject expected = children.at(i).toObject();
        const qint64 childId = qint64(expected.value("view").toDouble());
        const TFChildViewJsonTable::ChildView actual = childTable->children().at(i);
        QCOMPARE(actual.objVwId, childId);
        QCOMPARE(actual.caption, expected.value("caption").toString());
        QCOMPARE(actual.propertyParams, expected.value("link").toString());
        QCOMPARE(announced.at(i).at(0).value<qint64>(), childId);
        QCOMPARE(announced.at(i).at(1).toString(), expected.value("caption").toString());
    }

    // Chart.
    const QJsonObject chart = file.value("chart").toObject();
    QCOMPARE(view->chartTable() != nullptr, !chart.isEmpty());
    if (!chart.isEmpty()) {
        const ChartViewConfig config = view->chartTable()->config();
        QCOMPARE(config.Title, chart.value("Title").toString());
        QCOMPARE(config.ChartType, chart.value("ChartType").toString());
        QCOMPARE(config.XFieldName, chart.value("XFieldName").toString());
        QCOMPARE(config.XValueType, chart.value("XValueType").toString());
        QCOMPARE(config.XItemNamesFormat, chart.value("XItemNamesFormat").toString());
        QCOMPARE(config.LegendPosition, chart.value("LegendPosition").toInt());
        QCOMPARE(config.IsSwitchXAxis, chart.value("IsSwitchXAxis").toBool());
        const QJsonArray series = chart.value("ChartDataConfigs").toArray();
        QCOMPARE(config.ChartDataConfigs.size(), series.size());
        for (int i = 0; i < series.size(); ++i) {
            const QJsonObject expected = series.at(i).toObject();
            const ChartDataConfig& actual = config.ChartDataConfigs.at(i);
            QCOMPARE(actual.FieldName, expected.value("FieldName").toString());
            QCOMPARE(actual.LegendLable, expected.value("LegendLable").toString());
            QCOMPARE(actual.ChartType, expected.value("ChartType").toString());
            QCOMPARE(actual.IsVisible, expected.value("IsVisible").toBool());
            QCOMPARE(actual.YShaftType, expected.value("YShaftType").toString());
            QCOMPARE(actual.ShowUnitFactor, expected.value("ShowUnitFactor").toDouble());
        }
    }

    // Columns: the "Bands" list of a table view, in file order.
    QList<QPair<QJsonObject, QString>> columns;
    flattenColumns(file.value("columns").toArray(), QString(), &columns);
    TFHeaderFieldConfigData* bands = view->headerTable();
    QCOMPARE(bands != nullptr, !columns.isEmpty());
    if (bands) {
        const QList<HeaderFieldInfo> fields = bands->fields();
        QCOMPARE(fields.size(), columns.size());
        for (int i = 0; i < columns.size(); ++i) {
            const QString differences = compareColumn(columns.at(i).first, fields.at(i), columns.at(i).second);
            QVERIFY2(differences.isEmpty(), qPrintable(fields.at(i).fieldName + ": " + differences));
            QCOMPARE(fields.at(i).visible, !columns.at(i).first.value("hidden").toBool());
        }
    }

    // The field table: every column of data with its display settings and
    // its visibility.
    TFObjectViewConfigTable* fieldTable = parser.objectViewConfigTable();
    QVERIFY(fieldTable);
    for (const auto& entry : qAsConst(columns)) {
        const QJsonObject column = entry.first;
        if (column.contains("band"))
            continue;
        const QString name = column.value("field").toString();
        const HeaderFieldInfo settings = fieldTable->headerFieldInfo(name);
        const QString differences = compareColumn(column, settings, QString());
        QVERIFY2(differences.isEmpty() || differences.startsWith("OwnerBand"), qPrintable(name + ": " + differences));
        const QString status = column.value("status").toString("1");
        const bool visible = !column.value("hidden").toBool() && (status == "1" || status == "6");
        QVERIFY2(fieldTable->isFieldVisible(name) == visible, qPrintable(name));
    }
    for (const QJsonValue& dataField : file.value("dataFields").toArray())
        QCOMPARE(fieldTable->headerFieldInfo(dataField.toString()).fieldName, dataField.toString());

    // A cross view takes its columns from the summary: the row fields, a
    // band per value across with the value fields, then the totals.
    TFSummaryJsonTable* summary = parser.summaryTable();
    QVERIFY(summary);
    QCOMPARE(summary->columnTable() != nullptr, cross && !parser.dataMaps().isEmpty());
    if (summary->columnTable()) {
        const QJsonObject crossView = file.value("cross").toObject();
        const QJsonArray rowColumns = crossView.value("rows").toArray();
        const QJsonArray valueColumns = crossView.value("values").toArray();
        const QJsonArray totalColumns = crossView.value("totals").toArray();
        const QList<HeaderFieldInfo> fields = summary->columnTable()->fields();
        const int bandWidth = 1 + valueColumns.size();
        const int middle = fields.size() - rowColumns.size() - totalColumns.size();
        QVERIFY(middle > 0 && middle % bandWidth == 0);

        int at = 0;
        for (const QJsonValue& column : rowColumns) {
            const QString differences = compareColumn(column.toObject(), fields.at(at++), QString());
            QVERIFY2(differences.isEmpty(), qPrintable(differences));
        }
        for (int band = 0; band < middle / bandWidth; ++band) {
            const HeaderFieldInfo bandField = fields.at(at++);
            QCOMPARE(bandField.columnType, QString("Band"));
            QVERIFY(bandField.fieldName.startsWith("B_"));
            const QString across = bandField.fieldName.mid(2);
            QCOMPARE(bandField.caption, crossView.value("bandCaption").toString("%1").arg(across));
            for (const QJsonValue& value : valueColumns) {
                QJsonObject column = value.toObject();
                column.insert("field", across + "__" + column.value("field").toString());
                const QString differences = compareColumn(column, fields.at(at++), bandField.fieldName);
                QVERIFY2(differences.isEmpty(), qPrintable(differences));
            }
        }
        for (const QJsonValue& column : totalColumns) {
            const QString differences = compareColumn(column.toObject(), fields.at(at++), QString());
            QVERIFY2(differences.isEmpty(), qPrintable(differences));
        }
        for (const HeaderFieldInfo& field : fields)
            QCOMPARE(summary->headerFieldInfo(field.fieldName).caption, field.caption);
    }
}

QTEST_GUILESS_MAIN(tst_CatalogueViews)
#include "tst_catalogueviews.moc"
