#include "documenttables.h"

#include "jsonparser/tfjsonparser.h"
#include "mulittable/tfheaderdatastruct.h"

#include <QJsonArray>
#include <QSignalSpy>
#include <QtTest>

using TFSubject::TFJsonParser;
using TFTableModelData::tagCellValue;

namespace {

QByteArray envelope(int state, const QString& msg, const QJsonValue& data)
{
    return QJsonDocument(QJsonObject{ { "state", state }, { "msg", msg }, { "extend", QJsonValue::Null },
                                      { "data", data } })
        .toJson(QJsonDocument::Compact);
}

void ignoreMergeWarnings()
{
    for (const char* band : { "B_ALL", "B_BASE", "B_FIN", "NOT_IN_OBJECT" })
        QTest::ignoreMessage(QtWarningMsg, qPrintable(QStringLiteral("cant find field name: %1").arg(band)));
}

} // namespace

class tst_TFJsonParserRows : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void parseConfigBuildsHeaderAndRows();
    void pages_data();
    void pages();
    void exportPath_data();
    void exportPath();
    void rowDataIsAMetaType();
};

void tst_TFJsonParserRows::initTestCase()
{
    qputenv("TZ", "UTC");
}

void tst_TFJsonParserRows::init()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void tst_TFJsonParserRows::cleanup()
{
    QLocale::setDefault(QLocale::system());
}

void tst_TFJsonParserRows::parseConfigBuildsHeaderAndRows()
{
    TFTreeStruct root(QString{});
    TFJsonParser parser;
    ignoreMergeWarnings();
    QVERIFY(parser.parseConfig(DocumentTables::load("bands_view.json"), &root));
    // Read again: rows and tree are those of the second document.
    QVERIFY(parser.parseConfig(DocumentTables::load("cross_view.json"), &root));
    QCOMPARE(root.leafCaptions(), (QStringList{ "项目", "金额(亿元)", "2021金额2021", "ITEM" }));
    QCOMPARE(parser.rows().size(), 2);
}

void tst_TFJsonParserRows::pages_data()
{
    QTest::addColumn<QString>("document");   // a file of the test data, or JSON text
    QTest::addColumn<QString>("page");       // JSON text of a later page; empty: none
    QTest::addColumn<bool>("taken");
    QTest::addColumn<QString>("state");      // rows, row count, page; captions; the first row's cells

    const QString bands = "bands_view.json";
    const QString bandsCaptions = "证券代码,简称,净利润(万元),ROE合计,比率,报告期2020";
    QTest::newRow("rows without any header: every key a further cell") << R"({"Data":[{"B":1,"A":2}]})" << ""
        << true << "1 rows, -1 in all, page -1; ; A=2 B=1";
    QTest::newRow("a page that is no object") << bands << "5" << false << "";
    QTest::newRow("an empty page") << bands << "{}" << false << "";
    // The summary is filled in place: the row count of the first page stays.
    QTest::newRow("a later page") << bands
        << R"({"Data":[{"SECU_ID":7,"SECU_CODE":"000002","NET_PROFIT":50000}],"Summary":[{"Item":"pindex","value":2}]})"
        << true << "1 rows, 3 in all, page 2; " + bandsCaptions + "; SECU_CODE=000002:String#7 SECU_SHT=:String#7 "
                   "NET_PROFIT=50000:Decimal#7 ROE_SUM=50009:decimal#7 RATIO=:Decimal#7 END_DATE=:DateTime#7 SECU_ID=7";
    // A page without "Data" builds the rows again from the rows it has.
    QTest::newRow("a page without rows") << bands << R"({"Other":1})" << true << "as before";
    // A later page replaces the column list of the summary, not the tree;
    // the further key's type comes from the new list.
    QTest::newRow("a later page of a cross view") << "cross_view.json"
        << R"({"Data":[{"ITEM":"x","OTHER":1}],"Summary":[{"Item":"GridColumns","value":)"
           R"("[{\"fieldName\":\"OTHER\",\"showStatus\":1,\"valueType\":\"Decimal\"}]"}]})"
        << true << "1 rows, 2 in all, page 0; 项目,金额(亿元),2021金额2021,ITEM; "
                   "ITEM=x:String 2020__VAL=:Decimal 2021__VAL=:Decimal ITEM=x OTHER=1:Decimal";
    QTest::newRow("a later page brings the tables the first lacked") << "{}"
        << R"({"Data":[{"A":1}],"Summary":[{"Item":"rcount","value":9}]})" << true << "1 rows, 9 in all, page 0; ; A=1";
}

void tst_TFJsonParserRows::pages()
{
    QFETCH(QString, document);
    QFETCH(QString, page);
    QFETCH(bool, taken);
    QFETCH(QString, state);

    const bool file = document.endsWith(QLatin1String(".json"));
    const QJsonObject first = file ? DocumentTables::load(document) : QJsonDocument::fromJson(document.toUtf8()).object();
    TFTreeStruct root(QString{});
    TFJsonParser parser;
    if (document.startsWith("bands"))
        ignoreMergeWarnings();
    QVERIFY(parser.parseConfig(first, &root));
    const auto describe = [&] {
        QStringList cells;
        for (const tagCellValue& cell : parser.rows().value(0)) {
            cells << cell.fieldName + '=' + cell.value.toString() + (cell.valueType.isEmpty() ? "" : ':' + cell.valueType)
                         + (cell.secuId ? '#' + QString::number(cell.secuId) : QString());
        }
        return QStringLiteral("%1 rows, %2 in all, page %3; %4; %5").arg(parser.rows().size()).arg(parser.rowCount())
            .arg(parser.pageIndex()).arg(root.leafCaptions().join(','), cells.join(' '));
    };
    const QString before = describe();
    if (!page.isEmpty())
        QCOMPARE(parser.parseData(QJsonDocument::fromJson("[" + page.toUtf8() + "]").array().first()), taken);
    // A page refused leaves everything as it was.
    QCOMPARE(describe(), taken && state != QLatin1String("as before") ? state : before);
}

void tst_TFJsonParserRows::exportPath_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QVariantList>("first"); // the first row's values, when given

    QTest::newRow("empty") << QByteArray() << false << 0 << "json is Empty" << QVariantList();
    QTest::newRow("bad json") << QByteArray("{\"state\":") << false << 0 << "read json file failed..." << QVariantList();
    QTest::newRow("no keys") << QByteArray("{}") << false << 0 << "" << QVariantList();
    QTest::newRow("an array") << QByteArray("[1]") << false << 0 << "" << QVariantList();
    QTest::newRow("state 0") << envelope(0, "无权限", QJsonObject{ { "Data", QJsonArray() } }) << false << 0 << "无权限"
                             << QVariantList();
    QTest::newRow("empty data") << envelope(1, "", QJsonObject()) << false << 0 << "" << QVariantList();
    QTest::newRow("data without rows") << envelope(1, "", QJsonObject{ { "Summary", QJsonArray() } }) << true << 0 << ""
                                       << QVariantList();
    QTest::newRow("two rows")
        << envelope(1, "", QJsonObject{ { "Data", QJsonArray{ QJsonObject{ { "SECU_CODE", "1" } }, QJsonObject{} } } })
        << true << 2 << "" << QVariantList();
    // Leaves only: code trimmed, name, profit in ten thousands, the sum to
    // four places, the ratio, the date.
    QTest::newRow("the document's rows")
        << envelope(1, "", QJsonObject{ { "Data", DocumentTables::load("bands_view.json").value("Data") } }) << true << 3
        << "" << QVariantList{ "600000", "浦发银行", 123.46, 1577838635664.5, 1234.56, "2020-01-01" };
}

void tst_TFJsonParserRows::exportPath()
{
    QFETCH(QByteArray, reply);
    QFETCH(bool, ok);
    QFETCH(int, rows);
    QFETCH(QString, message);

    TFTreeStruct root(QString{});
    TFJsonParser parser;
    ignoreMergeWarnings();
    QVERIFY(parser.parseConfig(DocumentTables::load("bands_view.json"), &root));
    if (!message.isEmpty())
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression(QRegularExpression::escape(message)));
    QList<QList<QVariant>> out;
    QCOMPARE(parser.parseData(reply, &out, &root), ok);
    QCOMPARE(out.size(), rows);
    for (const QList<QVariant>& values : out)
        QCOMPARE(values.size(), 6);
    QFETCH(QVariantList, first);
    if (!first.isEmpty())
        QCOMPARE(out.value(0), first);
    // The parser's own rows are untouched.
    QCOMPARE(parser.rows().size(), 3);
}

void tst_TFJsonParserRows::rowDataIsAMetaType()
{
    TFJsonParser parser;
    QVERIFY(QMetaType::type("RowData") != QMetaType::UnknownType);
    RowData row{ tagCellValue() };
    row.first().value = 5;
    const QVariant carried = QVariant::fromValue(row);
    QCOMPARE(carried.value<RowData>().first().value, QVariant(5));
}

QTEST_MAIN(tst_TFJsonParserRows)
#include "tst_tfjsonparserrows.moc"
