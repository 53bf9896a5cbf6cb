#include "jsonparser/tfjsonparser.h"
#include "mulittable/tfheaderdatastruct.h"

#include "../shared/messagelog.h"
#include "../shared/tablefields.h"

#include <QFile>
#include <QSignalSpy>
#include <QtTest>

using TFSubject::TFJsonParser;

namespace {

// A document of the data table: a file under the test data, or JSON text.
QJsonValue document(const QString& source)
{
    if (!source.endsWith(QLatin1String(".json")))
        return jsonValue(source);
    QFile file(QStringLiteral(SUBJECT_TEST_DATA_DIR "/config/") + source);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot open %s", qPrintable(file.fileName()));
    return QJsonDocument::fromJson(file.readAll()).object();
}

QString tableIds(const TFJsonParser& parser)
{
    QStringList ids;
    for (int id = -1; id <= 13; ++id) {
        if (const TFBaseJsonTable* table = parser.table(id)) {
            if (table->tableType() != id)
                qFatal("table %d kept under id %d", table->tableType(), id);
            ids << QString::number(id);
        }
    }
    return ids.join(',');
}

// What the parser answers about a document, in one line: only what differs
// from the answers of a parser without tables.
QString answersOf(const TFJsonParser& parser)
{
    TableFields::Line line;
    line.text("tables", tableIds(parser)).number("rowCount", parser.rowCount(), -1)
        .number("pageIndex", parser.pageIndex(), -1).number("pageSize", parser.pageSize(), -1)
        .text("name", parser.objectViewName()).flag("showChild", parser.isShowChild()).flag("cross", parser.isCross())
        .flag("group", parser.isGroup()).number("frozen", parser.frozenCount())
        .text("vGrid", parser.vGridColHeaderField()).flag("hasVGrid", parser.hasVGridColHeaderField())
        .number("rows", parser.dataMaps().size()).number("filters", parser.filterData().size())
        .text("child1003", parser.childViewParams(1003));
    const QPair<QString, QVariant> order = parser.orderProperty();
    if (!order.first.isEmpty() || !order.second.isNull())
        line.raw("order=" + order.first + ':' + TableFields::variant(order.second));
    if (const TFViewConfigTable* view = parser.viewConfigTable()) {
        line.raw("view[" + TableFields::viewFlags(*view) + ']');
        if (const TFChartViewJsonTable* chart = view->chartTable())
            line.number("series", chart->config().ChartDataConfigs.size());
    }
    if (parser.objectViewConfigTable())
        line.number("fieldRecords", parser.objectViewConfigTable()->records().size());
    return line.str();
}

} // namespace

class tst_TFJsonParserConfig : public QObject
{
    Q_OBJECT

private slots:
    void answers_data();
    void answers();
    void refusedDocumentChangesNothing_data();
    void refusedDocumentChangesNothing();
    void secondDocumentReplacesTables();
    void headerBuildMergesTheFieldTable();
    void childViewsAnnouncedWhileReading();
};

void tst_TFJsonParserConfig::answers_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("expected");

    QTest::newRow("empty object") << "{}" << "()";
    QTest::newRow("null") << "null" << "()";
    QTest::newRow("array") << R"([{"Data":[{"A":1}]}])" << "()";
    QTest::newRow("text") << R"("{\"Data\":[]}")" << "()";
    QTest::newRow("Object and Object_Property are ignored")
        << R"({"Object":[{"A":1}],"Object_Property":{"DATA":[{"A":1}]},"View":[{"A":1}],"DATA":[{"A":1}]})" << "()";
    QTest::newRow("names are exact") << R"({"data":[{"A":1}],"view_config":[]})" << "()";
    // Without a view table every question has the answer of no view.
    QTest::newRow("rows only") << R"({"Data":[{"A":1}]})" << "tables=1;rows=1";
    QTest::newRow("all five")
        << R"({"Data":[],"View_Config":[],"Object_View_Config":[],"Summary":[],"Object_View":[]})"
        << "tables=1,3,4,7,12;rowCount=0;pageIndex=0;pageSize=200;view[()]";
    QTest::newRow("members of the wrong type still make tables") << R"({"Data":"x","View_Config":3,"Summary":null})"
                                                                 << "tables=1,4,7;rowCount=0;pageIndex=0;pageSize=200;view[()]";
    QTest::newRow("all figures")
        << R"({"Summary":[{"Item":"rcount","value":4321},{"Item":"pindex","value":3},{"Item":"psize","value":100}]})"
        << "tables=7;rowCount=4321;pageIndex=3;pageSize=100";
    // The documents of the three kinds of view.
    QTest::newRow("table view") << "table_view.json"
        << "tables=1,3,4,7,12;rowCount=3;pageIndex=1;pageSize=50;name=A股行情;showChild=true;frozen=2;rows=3;"
           "filters=3;child1003=SECU_ID=SECU_ID;END_DT=END_DT;order=order:{\"SECU_CODE\":1,\"TRD_AMT\":-1};"
           "view[viewId=1001;showChild=true;frozenCount=2;bandsLevel=2;sectorNum=1001001;"
           "rootSectorNum=1001;orderProperty=order:{\"SECU_CODE\":1,\"TRD_AMT\":-1}];fieldRecords=4";
    QTest::newRow("cross view") << "cross_view.json"
        << "tables=1,3,4,7;rowCount=1;pageIndex=0;pageSize=0;name=净利润对比;cross=true;group=true;vGrid=RPT_YEAR;"
           "hasVGrid=true;rows=1;view[viewId=3001;cross=true;group=true;groupFields=IND_NAME;groupFormat={0};"
           "vGridColHeaderField=RPT_YEAR;hasVGridColHeaderField=true]";
    QTest::newRow("chart view") << "chart_view.json"
        << "tables=1,3,4;name=收盘价走势;rows=2;filters=1;view[viewId=4001;getChartData=true];series=3";
}

void tst_TFJsonParserConfig::answers()
{
    QFETCH(QString, source);
    QFETCH(QString, expected);

    TFTreeStruct tree{ QString() };
    MessageLog log;   // the header build warns of bands the field table lacks
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(document(source), &tree));
    QCOMPARE(answersOf(parser), expected);
    QCOMPARE(parser.header(), &tree);
}

void tst_TFJsonParserConfig::refusedDocumentChangesNothing_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<bool>("withHeader");

    QTest::newRow("undefined document") << "" << true;
    QTest::newRow("no header") << R"({"Data":[]})" << false;
}

void tst_TFJsonParserConfig::refusedDocumentChangesNothing()
{
    QFETCH(QString, source);
    QFETCH(bool, withHeader);

    TFTreeStruct tree{ QString() };
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(document(R"({"Summary":[{"Item":"rcount","value":9}]})"), &tree));
    const QString before = answersOf(parser);
    QVERIFY(!parser.parseConfig(document(source), withHeader ? &tree : nullptr));
    QCOMPARE(answersOf(parser), before);
    QCOMPARE(parser.header(), &tree);
}

void tst_TFJsonParserConfig::secondDocumentReplacesTables()
{
    TFTreeStruct tree{ QString() };
    MessageLog log;
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(document("table_view.json"), &tree));
    QPointer<TFViewConfigTable> firstView = parser.viewConfigTable();
    QPointer<TFBaseJsonTable> firstData = parser.table(1);

    QVERIFY(parser.parseConfig(document(R"({"Data":[{"B":2}]})"), &tree));
    QCOMPARE(answersOf(parser), QString("tables=1;rows=1"));
    QVERIFY(firstView.isNull());
    QVERIFY(firstData.isNull());
    QCOMPARE(parser.dataMaps(), (QList<QVariantMap> { QVariantMap { { "B", 2 } } }));
    QVERIFY(parser.parseConfig(QJsonObject(), &tree));
    QCOMPARE(answersOf(parser), QString("()"));
}

void tst_TFJsonParserConfig::headerBuildMergesTheFieldTable()
{
    TFTreeStruct tree{ QString() };
    MessageLog log;
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(document("table_view.json"), &tree));
    // Only the header built at the end speaks: of bands and fields that the
    // field table does not know.
    const QStringList unknown { "cant find field name: B_BASE", "cant find field name: B_PRICE",
                                "cant find field name: CHG_RAT" };
    QCOMPARE(log.messages(QtWarningMsg), unknown);
    QCOMPARE(log.count(), unknown.size());
    // The "Bands" list now holds the field table's settings: width from ots_cfg.
    QCOMPARE(parser.viewConfigTable()->headerTable()->fields().at(5).width, 130);
}

void tst_TFJsonParserConfig::childViewsAnnouncedWhileReading()
{
    TFTreeStruct tree{ QString() };
    MessageLog log;
    TFJsonParser parser;
    QStringList heard;
    connect(&parser, &TFJsonParser::signalSubTableJsonData, this, [&](qint64 id, const QString& caption) {
        // The owner hears of the children before the view table is done.
        heard << QStringLiteral("%1:%2:%3").arg(id).arg(caption).arg(parser.viewConfigTable() ? "stored" : "reading");
    });
    QVERIFY(parser.parseConfig(document("table_view.json"), &tree));
    QCOMPARE(heard, (QStringList { "1002:个股行情:reading", "1003:公司公告:reading" }));
    // Reading the same document again announces them again.
    QVERIFY(parser.parseConfig(document("table_view.json"), &tree));
    QCOMPARE(heard.size(), 4);
}

QTEST_APPLESS_MAIN(tst_TFJsonParserConfig)
#include "tst_tfjsonparserconfig.moc"
