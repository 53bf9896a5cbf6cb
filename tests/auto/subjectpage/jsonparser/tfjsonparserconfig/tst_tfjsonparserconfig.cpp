#include "jsonparser/tfchartviewjsontable.h"
#include "jsonparser/tfchildviewjsontable.h"
#include "jsonparser/tffilterjsontable.h"
#include "jsonparser/tfheaderfieldconfigdata.h"
#include "jsonparser/tfjsonparser.h"
#include "mulittable/tfheaderdatastruct.h"
#include "jsonparser/tfobjectviewconfigtable.h"
#include "jsonparser/tfsummaryjsontable.h"
#include "jsonparser/tfviewconfigtable.h"

#include "../shared/messagelog.h"

#include <QFile>
#include <QSignalSpy>
#include <QtTest>


using TFSubject::TFJsonParser;

class tst_TFJsonParserConfig : public QObject
{
    Q_OBJECT

private slots:

    void rejects_data();
    void rejects();
    void tablesOfDocument_data();
    void tablesOfDocument();
    void secondDocumentReplacesTables();
    void pagingFigures_data();
    void pagingFigures();
    void questionsWithoutViewTable();
    void childViewsAnnouncedWhileReading();

    void tableViewDocument();
    void crossViewDocument();
    void chartViewDocument();

private:
    static QJsonObject loadDocument(const QString& name);
};

// parseConfig builds the band header into the tree it is given.
static TFTreeStruct* bandTree()
{
    static TFTreeStruct tree { QString() };
    return &tree;
}

static QList<int> tableIds(const TFJsonParser& parser)
{
    QList<int> ids;
    for (int id = -1; id <= 13; ++id) {
        if (const TFBaseJsonTable* table = parser.table(id)) {
            if (table->tableType() != id)
                qFatal("table %d kept under id %d", table->tableType(), id);
            ids.append(id);
        }
    }
    return ids;
}

QJsonObject tst_TFJsonParserConfig::loadDocument(const QString& name)
{
    QFile file(QStringLiteral(SUBJECT_TEST_DATA_DIR "/config/") + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot open %s", qPrintable(file.fileName()));
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        qFatal("%s: %s", qPrintable(name), qPrintable(error.errorString()));
    return document.object();
}

void tst_TFJsonParserConfig::rejects_data()
{
    QTest::addColumn<QJsonValue>("document");
    QTest::addColumn<bool>("withHeader");

    QTest::newRow("undefined document") << QJsonValue(QJsonValue::Undefined) << true;
    QTest::newRow("no header") << QJsonValue(QJsonObject { { "Data", QJsonArray() } }) << false;
}

void tst_TFJsonParserConfig::rejects()
{
    QFETCH(QJsonValue, document);
    QFETCH(bool, withHeader);

    TFJsonParser parser;
    QVERIFY(parser.parseConfig(QJsonObject { { "Summary", QJsonArray { QJsonObject { { "Item", "rcount" }, { "value", 9 } } } } },
                               bandTree()));
    QCOMPARE(parser.header(), bandTree());

    // A refused document changes nothing.
    QVERIFY(!parser.parseConfig(document, withHeader ? bandTree() : nullptr));
    QCOMPARE(tableIds(parser), QList<int> { 7 });
    QCOMPARE(parser.rowCount(), 9);
    QCOMPARE(parser.header(), bandTree());
}

void tst_TFJsonParserConfig::tablesOfDocument_data()
{
    QTest::addColumn<QJsonValue>("document");
    QTest::addColumn<QList<int>>("tables");

    const QJsonArray rows { QJsonObject { { "A", 1 } } };
    QTest::newRow("empty object") << QJsonValue(QJsonObject()) << QList<int>();
    QTest::newRow("null") << QJsonValue() << QList<int>();
    QTest::newRow("array") << QJsonValue(QJsonArray { QJsonObject { { "Data", rows } } }) << QList<int>();
    QTest::newRow("text") << QJsonValue("{\"Data\":[]}") << QList<int>();
    QTest::newRow("Object and Object_Property are ignored")
        << QJsonValue(QJsonObject { { "Object", rows }, { "Object_Property", QJsonObject { { "DATA", rows } } },
                                    { "View", rows }, { "DATA", rows } })
        << QList<int>();
    QTest::newRow("all five") << QJsonValue(QJsonObject { { "Data", rows }, { "View_Config", QJsonArray() },
                                                          { "Object_View_Config", QJsonArray() },
                                                          { "Summary", QJsonArray() }, { "Object_View", QJsonArray() } })
                              << QList<int> { 1, 3, 4, 7, 12 };
    QTest::newRow("members of the wrong type still make tables")
        << QJsonValue(QJsonObject { { "Data", "x" }, { "View_Config", 3 }, { "Summary", QJsonValue() } })
        << QList<int> { 1, 4, 7 };
    QTest::newRow("names are exact") << QJsonValue(QJsonObject { { "data", rows }, { "view_config", QJsonArray() } })
                                     << QList<int>();
}

void tst_TFJsonParserConfig::tablesOfDocument()
{
    QFETCH(QJsonValue, document);
    QFETCH(QList<int>, tables);

    TFJsonParser parser;
    QVERIFY(parser.parseConfig(document, bandTree()));
    QCOMPARE(tableIds(parser), tables);
    QCOMPARE(parser.header(), bandTree());
}

void tst_TFJsonParserConfig::secondDocumentReplacesTables()
{
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(loadDocument("table_view.json"), bandTree()));
    QCOMPARE(tableIds(parser), (QList<int> { 1, 3, 4, 7, 12 }));
    QPointer<TFViewConfigTable> firstView = parser.viewConfigTable();
    QPointer<TFBaseJsonTable> firstData = parser.table(1);

    QVERIFY(parser.parseConfig(QJsonObject { { "Data", QJsonArray { QJsonObject { { "B", 2 } } } } }, bandTree()));
    QCOMPARE(tableIds(parser), QList<int> { 1 });
    QVERIFY(firstView.isNull());
    QVERIFY(firstData.isNull());
    QCOMPARE(parser.dataMaps(), (QList<QVariantMap> { QVariantMap { { "B", 2 } } }));
    QCOMPARE(parser.rowCount(), -1);
    QCOMPARE(parser.objectViewName(), QString());
    QVERIFY(parser.filterData().isEmpty());

    QVERIFY(parser.parseConfig(QJsonObject(), bandTree()));
    QVERIFY(tableIds(parser).isEmpty());
    QVERIFY(parser.dataMaps().isEmpty());
}

void tst_TFJsonParserConfig::pagingFigures_data()
{
    QTest::addColumn<QJsonObject>("document");
    QTest::addColumn<int>("rowCount");
    QTest::addColumn<int>("pageIndex");
    QTest::addColumn<int>("pageSize");

    auto item = [](const char* name, int value) { return QJsonObject { { "Item", name }, { "value", value } }; };
    QTest::newRow("no summary") << QJsonObject { { "Data", QJsonArray() } } << -1 << -1 << -1;
    QTest::newRow("empty summary") << QJsonObject { { "Summary", QJsonArray() } } << 0 << 0 << 200;
    QTest::newRow("summary without rcount") << QJsonObject { { "Summary", QJsonArray { item("pindex", 2) } } }
                                            << 0 << 2 << 200;
    QTest::newRow("summary not an array") << QJsonObject { { "Summary", QJsonObject() } } << 0 << 0 << 200;
    QTest::newRow("all figures")
        << QJsonObject { { "Summary", QJsonArray { item("rcount", 4321), item("pindex", 3), item("psize", 100) } } }
        << 4321 << 3 << 100;
}

void tst_TFJsonParserConfig::pagingFigures()
{
    QFETCH(QJsonObject, document);
    QFETCH(int, rowCount);
    QFETCH(int, pageIndex);
    QFETCH(int, pageSize);

    TFJsonParser parser;
    QVERIFY(parser.parseConfig(document, bandTree()));
    QCOMPARE(parser.rowCount(), rowCount);
    QCOMPARE(parser.pageIndex(), pageIndex);
    QCOMPARE(parser.pageSize(), pageSize);
}

void tst_TFJsonParserConfig::questionsWithoutViewTable()
{
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(QJsonObject { { "Data", QJsonArray() } }, bandTree()));
    QVERIFY(!parser.viewConfigTable());
    QVERIFY(!parser.objectViewConfigTable());
    QVERIFY(!parser.summaryTable());
    QVERIFY(!parser.isCross());
    QVERIFY(!parser.isGroup());
    QVERIFY(!parser.isShowChild());
    QVERIFY(!parser.hasVGridColHeaderField());
    QCOMPARE(parser.frozenCount(), 0);
    QCOMPARE(parser.vGridColHeaderField(), QString());
    QCOMPARE(parser.orderProperty().first, QString());
    QVERIFY(parser.orderProperty().second.isNull());
    QVERIFY(parser.filterData().isEmpty());
    QCOMPARE(parser.childViewParams(1002), QString());
    QCOMPARE(parser.objectViewName(), QString());
}

void tst_TFJsonParserConfig::childViewsAnnouncedWhileReading()
{
    TFJsonParser parser;
    QSignalSpy spy(&parser, &TFJsonParser::signalSubTableJsonData);
    QList<bool> viewTableStoredAtSignal;
    connect(&parser, &TFJsonParser::signalSubTableJsonData, this,
            [&] { viewTableStoredAtSignal.append(parser.viewConfigTable() != nullptr); });

    QVERIFY(parser.parseConfig(loadDocument("table_view.json"), bandTree()));
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).value<qint64>(), qint64(1002));
    QCOMPARE(spy.at(0).at(1).toString(), QString("个股行情"));
    QCOMPARE(spy.at(1).at(0).value<qint64>(), qint64(1003));
    QCOMPARE(spy.at(1).at(1).toString(), QString("公司公告"));
    // The owner hears of the children before the view table is done.
    QCOMPARE(viewTableStoredAtSignal, (QList<bool> { false, false }));

    // Reading the same document again announces them again.
    QVERIFY(parser.parseConfig(loadDocument("table_view.json"), bandTree()));
    QCOMPARE(spy.count(), 4);
}

void tst_TFJsonParserConfig::tableViewDocument()
{
    MessageLog log;
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(loadDocument("table_view.json"), bandTree()));
    // Only the header built at the end speaks: bands that the field table
    // does not know.
    for (const QString& message : log.messages(QtWarningMsg))
        QVERIFY2(message.startsWith("cant find field name:"), qPrintable(message));
    QCOMPARE(log.messages(QtDebugMsg), QStringList());

    QCOMPARE(parser.objectViewName(), QString("A股行情"));
    QCOMPARE(parser.dataMaps().size(), 3);
    QCOMPARE(parser.dataMaps().at(1).value("SECU_SHT").toString(), QString("招商银行"));
    QVERIFY(parser.dataMaps().at(2).value("TRD_AMT").isNull());
    QCOMPARE(parser.rowCount(), 3);
    QCOMPARE(parser.pageIndex(), 1);
    QCOMPARE(parser.pageSize(), 50);

    QVERIFY(parser.isShowChild());
    QVERIFY(!parser.isCross());
    QVERIFY(!parser.isGroup());
    QCOMPARE(parser.frozenCount(), 2);
    QVERIFY(!parser.hasVGridColHeaderField());
    const QPair<QString, QVariant> order = parser.orderProperty();
    QCOMPARE(order.first, QString("order"));
    QCOMPARE(order.second.value<QJsonObject>(), (QJsonObject { { "TRD_AMT", -1 }, { "SECU_CODE", 1 } }));
    QCOMPARE(parser.childViewParams(1003), QString("SECU_ID=SECU_ID;END_DT=END_DT"));
    QCOMPARE(parser.childViewParams(1001), QString());

    TFViewConfigTable* view = parser.viewConfigTable();
    QVERIFY(view);
    QCOMPARE(view->viewId(), 1001);
    QCOMPARE(view->entries().size(), 12);
    QCOMPARE(view->bandsLevel(), 2);
    QVERIFY(!view->isShowFilter());     // "1" as a string
    QCOMPARE(view->sectorNum(), QString("1001001"));
    QCOMPARE(view->rootSectorNum(), QString("1001"));
    QVERIFY(!view->chartTable());

    const QList<TFTableModelData::FilterData> filters = parser.filterData();
    QCOMPARE(filters.size(), 3);
    QCOMPARE(filters.at(0).FieldName, QString("END_DT"));
    QCOMPARE(filters.at(0).ParameterCategory, QString("1"));
    QCOMPARE(filters.at(0).DefualtValue, QString("date'2024-01-31'"));
    QCOMPARE(filters.at(1).UnitCategory, 2);
    QCOMPARE(filters.at(1).ImageIndex, QString("3"));
    QCOMPARE(filters.at(2).ClassName, QString("UnitFactorCombobox"));

    TFHeaderFieldConfigData* bands = view->headerTable();
    QVERIFY(bands);
    QCOMPARE(bands->fields().size(), 7);
    QCOMPARE(bands->fields().at(5).fieldName, QString("TRD_AMT"));
    // Building the header merged the field table into the "Bands" list:
    // width from ots_cfg, visibility from vw_sts "1".
    QCOMPARE(bands->fields().at(5).width, 130);
    QCOMPARE(bands->fields().at(5).visible, true);

    TFObjectViewConfigTable* fields = parser.objectViewConfigTable();
    QVERIFY(fields);
    QCOMPARE(fields->records().size(), 4);
    QCOMPARE(fields->headerFieldInfo("TRD_AMT").showUnitFactor, qint64(100000000));
    QVERIFY(fields->isFieldVisible("TRD_AMT"));   // vw_sts 1 as a number
    QVERIFY(!fields->isFieldVisible("CLS_PRC"));
    QVERIFY(fields->isFieldVisible("CHG_RAT"));   // not in the table

    // The column list merged with the display settings: the two bands and
    // the field without settings warn and keep their own, once when
    // parseConfig built the header and once more here.
    bands->mergeWith(fields);
    const QStringList unknown { "cant find field name: B_BASE", "cant find field name: B_PRICE",
                                "cant find field name: CHG_RAT" };
    QCOMPARE(log.messages(QtWarningMsg), unknown + unknown);
    const QList<HeaderFieldInfo> merged = bands->fields();
    QCOMPARE(merged.at(1).caption, QString("证券代码"));
    QCOMPARE(merged.at(1).textAlignment, 1);
    QCOMPARE(merged.at(4).formatString, QString("n3"));
    QCOMPARE(merged.at(4).visible, false);       // vw_sts 2
    QCOMPARE(merged.at(5).visible, true);        // Visible false in both, vw_sts 1
    QCOMPARE(merged.at(5).width, 130);
    QCOMPARE(merged.at(5).showUnit, QString("亿元"));
    QCOMPARE(merged.at(6).statExpression, QString("AVG"));
}

void tst_TFJsonParserConfig::crossViewDocument()
{
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(loadDocument("cross_view.json"), bandTree()));
    QCOMPARE(tableIds(parser), (QList<int> { 1, 3, 4, 7 }));
    QVERIFY(parser.isCross());
    QVERIFY(parser.isGroup());
    QVERIFY(parser.hasVGridColHeaderField());
    QCOMPARE(parser.vGridColHeaderField(), QString("RPT_YEAR"));
    QCOMPARE(parser.viewConfigTable()->groupFields(), QString("IND_NAME"));
    QCOMPARE(parser.objectViewName(), QString("净利润对比"));
    QCOMPARE(parser.rowCount(), 1);
    QCOMPARE(parser.pageSize(), 0);             // "100" as a string
    QVERIFY(parser.viewConfigTable()->headerTable());   // "BANDS"

    TFSummaryJsonTable* summary = parser.summaryTable();
    QVERIFY(summary && summary->columnTable());
    const QList<HeaderFieldInfo> columns = summary->columnTable()->fields();
    QCOMPARE(columns.size(), 3);
    QCOMPARE(columns.at(0).visible, true);      // showStatus 1
    QCOMPARE(columns.at(1).visible, true);      // showStatus 6
    QCOMPARE(columns.at(1).width, 90);
    QCOMPARE(columns.at(1).showUnitFactor, qint64(10000));
    QCOMPARE(columns.at(2).visible, false);     // showStatus 2, visible true
    QCOMPARE(summary->headerFieldInfo("2023__NET_PRF").caption, QString("2023年"));
}

void tst_TFJsonParserConfig::chartViewDocument()
{
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(loadDocument("chart_view.json"), bandTree()));
    TFViewConfigTable* view = parser.viewConfigTable();
    QVERIFY(view);
    QVERIFY(view->isGetChartData());
    TFChartViewJsonTable* chart = view->chartTable();   // "Extend" / "chartviewconfig"
    QVERIFY(chart);
    const ChartViewConfig config = chart->config();
    QCOMPARE(config.ChartType, QString("Line"));
    QCOMPARE(config.XFieldName, QString("TRD_DT"));
    QCOMPARE(config.ChartDataConfigs.size(), 3);
    QCOMPARE(config.ChartDataConfigs.at(0).ShowUnitFactor, 0.5);
    QCOMPARE(config.ChartDataConfigs.at(1).PrevUnitFactor, 0);
    QCOMPARE(config.ChartDataConfigs.at(1).YShaftType, QString("Right"));
    QCOMPARE(config.ChartDataConfigs.at(2).FieldName, QString());
    QCOMPARE(parser.filterData().size(), 1);
    QCOMPARE(parser.filterData().first().DefualtValue, QString("$today(0)"));
    QCOMPARE(parser.dataMaps().size(), 2);
}

QTEST_APPLESS_MAIN(tst_TFJsonParserConfig)
#include "tst_tfjsonparserconfig.moc"
