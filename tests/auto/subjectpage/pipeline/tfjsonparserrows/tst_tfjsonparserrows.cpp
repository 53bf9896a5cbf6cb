#include "documenttables.h"

#include "jsonparser/tfjsonparser.h"
#include "mulittable/tfheaderdatastruct.h"

#include <QJsonArray>
#include <QSignalSpy>
#include <QtTest>

using TFSubject::TFJsonParser;
using TFTableModelData::tagCellValue;

namespace {

QStringList cellNames(const RowData& row)
{
    QStringList names;
    for (const tagCellValue& cell : row)
        names << cell.fieldName;
    return names;
}

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
    void emptyDocument();
    void laterPage();
    void laterPageOfACrossView();
    void laterPageWithoutTables();
    void exportPath_data();
    void exportPath();
    void exportValues();
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
    QCOMPARE(root.leaves().size(), 6);
    QCOMPARE(parser.rows().size(), 3);
    QCOMPARE(parser.rows().at(0).size(), 11);

    // Read again: rows and tree are those of the second document.
    QVERIFY(parser.parseConfig(DocumentTables::load("cross_view.json"), &root));
    QCOMPARE(root.leafCaptions(), (QStringList{ "项目", "金额(亿元)", "2021金额2021", "ITEM" }));
    QCOMPARE(parser.rows().size(), 2);
    QCOMPARE(cellNames(parser.rows().at(0)), (QStringList{ "ITEM", "2020__VAL", "2021__VAL", "ITEM", "EXTRA" }));
}

void tst_TFJsonParserRows::emptyDocument()
{
    TFTreeStruct root(QString{});
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(QJsonObject(), &root));
    QVERIFY(parser.rows().isEmpty());
    QVERIFY(root.leaves().isEmpty());
    QVERIFY(!parser.parseConfig(QJsonValue(QJsonValue::Undefined), &root));
    QVERIFY(!parser.parseConfig(QJsonObject(), nullptr));
    // Rows without any header: every key is a further cell.
    QVERIFY(parser.parseConfig(QJsonObject{ { "Data", QJsonArray{ QJsonObject{ { "B", 1 }, { "A", 2 } } } } }, &root));
    QCOMPARE(cellNames(parser.rows().first()), (QStringList{ "A", "B" }));
}

void tst_TFJsonParserRows::laterPage()
{
    TFTreeStruct root(QString{});
    TFJsonParser parser;
    ignoreMergeWarnings();
    QVERIFY(parser.parseConfig(DocumentTables::load("bands_view.json"), &root));
    const QStringList captions = root.leafCaptions();

    QVERIFY(!parser.parseData(QJsonObject()));
    QVERIFY(!parser.parseData(QJsonValue(5)));
    QCOMPARE(parser.rows().size(), 3);

    const QJsonObject page{ { "Data", QJsonArray{ QJsonObject{ { "SECU_ID", 7 }, { "SECU_CODE", "000002" },
                                                               { "NET_PROFIT", 50000 } } } },
                            { "Summary", QJsonArray{ QJsonObject{ { "Item", "pindex" }, { "value", 2 } } } } };
    QVERIFY(parser.parseData(page));
    QCOMPARE(parser.rows().size(), 1);
    QCOMPARE(parser.rows().first().first().value, QVariant("000002"));
    QCOMPARE(parser.rows().first().first().secuId, 7.0);
    QCOMPARE(parser.pageIndex(), 2);
    // The summary was filled in place: the row count of the first page stays.
    QCOMPARE(parser.rowCount(), 3);
    QCOMPARE(root.leafCaptions(), captions);

    // A page without "Data" builds the rows again from the rows it has.
    QVERIFY(parser.parseData(QJsonObject{ { "Other", 1 } }));
    QCOMPARE(parser.rows().size(), 1);
}

void tst_TFJsonParserRows::laterPageOfACrossView()
{
    // A later page replaces the column list of the summary but not the tree.
    TFTreeStruct root(QString{});
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(DocumentTables::load("cross_view.json"), &root));
    const QJsonArray columns{ QJsonObject{ { "fieldName", "OTHER" }, { "showStatus", 1 }, { "valueType", "Decimal" } } };
    const QJsonObject page{
        { "Data", QJsonArray{ QJsonObject{ { "ITEM", "x" }, { "OTHER", 1 } } } },
        { "Summary", QJsonArray{ QJsonObject{ { "Item", "GridColumns" },
                                              { "value", QString::fromUtf8(QJsonDocument(columns).toJson()) } } } }
    };
    QVERIFY(parser.parseData(page));
    QCOMPARE(root.leafCaptions(), (QStringList{ "项目", "金额(亿元)", "2021金额2021", "ITEM" }));
    const RowData row = parser.rows().first();
    QCOMPARE(cellNames(row), (QStringList{ "ITEM", "2020__VAL", "2021__VAL", "ITEM", "OTHER" }));
    // The further key's type comes from the new column list.
    QCOMPARE(row.last().valueType, QStringLiteral("Decimal"));
}

void tst_TFJsonParserRows::laterPageWithoutTables()
{
    TFTreeStruct root(QString{});
    TFJsonParser parser;
    QVERIFY(parser.parseConfig(QJsonObject(), &root));
    QCOMPARE(parser.rowCount(), -1);
    QVERIFY(parser.parseData(QJsonObject{ { "Data", QJsonArray{ QJsonObject{ { "A", 1 } } } },
                                          { "Summary", QJsonArray{ QJsonObject{ { "Item", "rcount" }, { "value", 9 } } } } }));
    QCOMPARE(parser.rowCount(), 9);
    QVERIFY(parser.summaryTable());
    QCOMPARE(parser.dataMaps().size(), 1);
    QCOMPARE(parser.rows().size(), 1);
}

void tst_TFJsonParserRows::exportPath_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("message");

    QTest::newRow("empty") << QByteArray() << false << 0 << "json is Empty";
    QTest::newRow("bad json") << QByteArray("{\"state\":") << false << 0 << "read json file failed...";
    QTest::newRow("no keys") << QByteArray("{}") << false << 0 << "";
    QTest::newRow("an array") << QByteArray("[1]") << false << 0 << "";
    QTest::newRow("state 0") << envelope(0, "无权限", QJsonObject{ { "Data", QJsonArray() } }) << false << 0 << "无权限";
    QTest::newRow("empty data") << envelope(1, "", QJsonObject()) << false << 0 << "";
    QTest::newRow("data without rows") << envelope(1, "", QJsonObject{ { "Summary", QJsonArray() } }) << true << 0 << "";
    QTest::newRow("two rows")
        << envelope(1, "", QJsonObject{ { "Data", QJsonArray{ QJsonObject{ { "SECU_CODE", "1" } }, QJsonObject{} } } })
        << true << 2 << "";
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
    // The parser's own rows are untouched.
    QCOMPARE(parser.rows().size(), 3);
}

void tst_TFJsonParserRows::exportValues()
{
    TFTreeStruct root(QString{});
    TFJsonParser parser;
    ignoreMergeWarnings();
    const QJsonObject document = DocumentTables::load("bands_view.json");
    QVERIFY(parser.parseConfig(document, &root));
    QList<QList<QVariant>> out;
    QVERIFY(parser.parseData(envelope(1, "ok", QJsonObject{ { "Data", document.value("Data") } }), &out, &root));
    QCOMPARE(out.size(), 3);
    // Leaves only: code trimmed, name, profit in ten thousands, the sum to
    // four places, the ratio, the date.
    QCOMPARE(out.at(0), (QList<QVariant>{ "600000", "浦发银行", 123.46, 1577838635664.5, 1234.56, "2020-01-01" }));
    QCOMPARE(out.at(1).at(1), QVariant(" "));
    QCOMPARE(out.at(1).at(4), QVariant(" "));
    QCOMPARE(out.at(1).at(5), QVariant("1970-01-01"));
    QCOMPARE(out.at(2), (QList<QVariant>{ " ", " ", " ", 0.0, " ", " " }));
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
