#include "documenttables.h"

#include "expression/expressionparse.h"
#include "jsonparser/tfheaderbuilder.h"
#include "jsonparser/tfrowbuilder.h"
#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfunboundexpression.h"

#include <QtTest>

using TFTableModelData::tagCellValue;

namespace {

QStringList cellNames(const RowData& row)
{
    QStringList names;
    for (const tagCellValue& cell : row)
        names << cell.fieldName;
    return names;
}

} // namespace

class tst_TFRowBuilder : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void bandsViewCells();
    void emptyRowGivesInvalidLeaves();
    void crossViewCells();
    void furtherCellsOfTheExport();
    void noLeaves();
    void duplicateLeafNames();
    void plainValue_data();
    void plainValue();
    void rawRowsKeepEveryValue_data();
    void rawRowsKeepEveryValue();

private:
    QList<RowData> build(const QString& file, bool typeLetters = false);

    ExpressionParse m_parser;
};

void tst_TFRowBuilder::initTestCase()
{
    qputenv("TZ", "UTC");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

QList<RowData> tst_TFRowBuilder::build(const QString& file, bool typeLetters)
{
    DocumentTables tables(DocumentTables::load(file));
    TFTreeStruct root(QString{});
    const TFSubject::ExpressionParseSource source = [this] { return &m_parser; };
    TFSubject::buildHeader(&root, tables.view.get(), tables.objectView.get(), tables.summary.get(), source);
    const bool cross = TFSubject::usesCrossColumns(tables.view.get(), tables.summary.get());
    TFUnboundExpression unbound(source);
    TFSubject::TFRowBuilder builder(root.leaves(), &unbound, [&](const QString& name) {
        return TFSubject::referenceField(name, cross, tables.summary.get(), tables.objectView.get()).valueType;
    });
    builder.setTypeLetterForFurtherCells(typeLetters);
    return builder.build(tables.data.rows());
}

void tst_TFRowBuilder::bandsViewCells()
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^cant find field name:"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^cant find field name:"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^cant find field name:"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^cant find field name:"));
    const QList<RowData> rows = build("bands_view.json");
    QCOMPARE(rows.size(), 3);

    // Leaves first, then the further keys in key order.
    const RowData& first = rows.at(0);
    QCOMPARE(cellNames(first), (QStringList{ "SECU_CODE", "SECU_SHT", "NET_PROFIT", "ROE_SUM", "RATIO", "END_DATE",
                                             "2019__ROE", "2020__ROE", "HIDDEN_COL", "SECU_ID", "SHARES" }));
    for (const tagCellValue& cell : first)
        QCOMPARE(cell.secuId, cell.fieldName.startsWith("2") || cell.fieldName == "HIDDEN_COL"
                                      || cell.fieldName == "SECU_ID" || cell.fieldName == "SHARES" ? 0.0 : 101.0);

    const tagCellValue& code = first.at(0);
    QCOMPARE(code.value, QVariant(" 600000 "));
    QCOMPARE(code.valueType, QStringLiteral("String"));
    QCOMPARE(code.textAlignment, 1);
    QCOMPARE(code.url, QStringLiteral("view:?secu={SECU_ID}"));

    const tagCellValue& profit = first.at(2);
    QCOMPARE(profit.value.toDouble(), 1234560.0);
    QCOMPARE(profit.columnType, QStringLiteral("BandedGridColumnWithUnit"));
    QCOMPARE(profit.prevUnitFactor, qint64(1));
    QCOMPARE(profit.showUnitFactor, qint64(10000));
    QCOMPARE(profit.baseShowUnitFactor, qint64(10000));
    QCOMPARE(profit.unitCategory, 1);
    QCOMPARE(profit.captionShowType, 1);
    QCOMPARE(profit.formatString, QStringLiteral("n2"));

    // SUM([ROE]) counts every key but "ROE" itself: dates, codes in text,
    // the security id and the shares too; names count as 0.
    QCOMPARE(first.at(3).value.toDouble(), 1577838635664.5);
    QCOMPARE(first.at(4).value.toDouble(), 1234.56);
    QCOMPARE(first.at(5).value.toLongLong(), Q_INT64_C(1577836800000));

    // Further cells: defaults, and the value type of the key's record.
    const tagCellValue& roe2019 = first.at(6);
    QCOMPARE(roe2019.valueType, QStringLiteral("Double"));
    QCOMPARE(roe2019.prevUnitFactor, qint64(1));
    QCOMPARE(roe2019.showUnitFactor, qint64(1));
    QCOMPARE(roe2019.baseShowUnitFactor, qint64(-1));
    QCOMPARE(roe2019.unitCategory, -1);
    QCOMPARE(roe2019.captionShowType, -1);
    QCOMPARE(roe2019.textAlignment, 0);
    QCOMPARE(first.at(7).valueType, QString());
    QCOMPARE(first.at(8).valueType, QStringLiteral("String"));
    QCOMPARE(first.at(10).valueType, QStringLiteral("Int64"));

    // Second row: the id as text, a missing name, a division by zero.
    const RowData& second = rows.at(1);
    QCOMPARE(second.first().secuId, 102.0);
    QVERIFY(!second.at(1).value.isValid());
    QCOMPARE(second.at(3).value.toDouble(), 350141.0);
    QVERIFY(!second.at(4).value.isValid());
    QCOMPARE(cellNames(second).mid(6), (QStringList{ "2019__ROE", "ROE", "SECU_ID", "SHARES" }));
}

void tst_TFRowBuilder::emptyRowGivesInvalidLeaves()
{
    for (int i = 0; i < 4; ++i)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^cant find field name:"));
    const RowData empty = build("bands_view.json").at(2);
    QCOMPARE(empty.size(), 6);
    for (const tagCellValue& cell : empty) {
        QCOMPARE(cell.secuId, 0.0);
        // The sum over no keys is 0; every other cell is invalid.
        if (cell.fieldName == QLatin1String("ROE_SUM"))
            QCOMPARE(cell.value, QVariant(0.0));
        else
            QVERIFY2(!cell.value.isValid(), qPrintable(cell.fieldName));
    }
}

void tst_TFRowBuilder::crossViewCells()
{
    const QList<RowData> rows = build("cross_view.json");
    QCOMPARE(rows.size(), 2);
    QCOMPARE(cellNames(rows.at(0)), (QStringList{ "ITEM", "2020__VAL", "2021__VAL", "ITEM", "EXTRA" }));
    // The group leaf reads the group field of the row.
    QCOMPARE(rows.at(0).at(3).value, QVariant("营业收入"));
    QCOMPARE(rows.at(0).at(1).showUnitFactor, qint64(100000000));
    QCOMPARE(rows.at(0).at(4).valueType, QString());
    QCOMPARE(rows.at(1).at(1).value, QVariant("n/a"));
    QCOMPARE(cellNames(rows.at(1)), (QStringList{ "ITEM", "2020__VAL", "2021__VAL", "ITEM" }));
}

void tst_TFRowBuilder::furtherCellsOfTheExport()
{
    const QList<RowData> rows = build("cross_view.json", true);
    QCOMPARE(rows.at(0).at(4).valueType, QString(QChar(int(QVariant::String))));
    QCOMPARE(rows.at(0).at(0).valueType, QStringLiteral("String"));
}

void tst_TFRowBuilder::noLeaves()
{
    TFUnboundExpression unbound([] { return static_cast<ExpressionParse*>(nullptr); });
    TFSubject::TFRowBuilder builder({}, &unbound, [](const QString&) { return QStringLiteral("T"); });
    const RowData row = builder.build(QVariantMap{ { "b", 2 }, { "a", 1 }, { "SECU_ID", 9 } });
    QCOMPARE(cellNames(row), (QStringList{ "SECU_ID", "a", "b" }));
    for (const tagCellValue& cell : row) {
        QCOMPARE(cell.valueType, QStringLiteral("T"));
        QCOMPARE(cell.secuId, 0.0);
    }
}

void tst_TFRowBuilder::duplicateLeafNames()
{
    HeaderFieldInfo a;
    a.fieldName = QStringLiteral("A");
    a.visible = true;
    TFTreeStruct root(QString{});
    buildHeaderTree(&root, { a, a }, false, QString());
    TFUnboundExpression unbound([] { return static_cast<ExpressionParse*>(nullptr); });
    TFSubject::TFRowBuilder builder(root.leaves(), &unbound, {});
    const RowData row = builder.build(QVariantMap{ { "A", 1 }, { "B", 2 } });
    QCOMPARE(cellNames(row), (QStringList{ "A", "A", "B" }));
    QCOMPARE(row.at(1).value, QVariant(1));
    QCOMPARE(builder.leafFieldNames(), (QStringList{ "A", "A" }));
}

void tst_TFRowBuilder::plainValue_data()
{
    QTest::addColumn<QString>("valueType");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("columnType");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("plain");

    const QString unit = QStringLiteral("BandedGridColumnWithUnit");
    QTest::newRow("invalid is a blank") << "Decimal" << "" << "" << QVariant() << QVariant(" ");
    QTest::newRow("decimal, two places") << "Decimal" << "" << "" << QVariant(1234.567) << QVariant(1234.57);
    QTest::newRow("decimal text") << "decimal" << "n1" << "" << QVariant("2.25") << QVariant(2.3);
    QTest::newRow("n0 gives a whole number") << "Decimal" << "N0" << "" << QVariant(1234567.6) << QVariant(qlonglong(1234568));
    QTest::newRow("unit column scaled by the cell") << "Decimal" << "" << unit << QVariant(25000) << QVariant(2.5);
    QTest::newRow("unit column in lower case") << "Decimal" << "n4" << unit.toLower() << QVariant(12345) << QVariant(1.2345);
    QTest::newRow("not a number as it is") << "Decimal" << "" << "" << QVariant("n/a") << QVariant("n/a");
    QTest::newRow("json null decimal as it is") << "Decimal" << "" << "" << QVariant::fromValue(nullptr) << QVariant::fromValue(nullptr);
    QTest::newRow("string trimmed") << "String" << "" << "" << QVariant("  a b ") << QVariant("a b");
    QTest::newRow("string of a number") << "NString" << "" << "" << QVariant(5) << QVariant("5");
    QTest::newRow("datetime") << "DateTime" << "" << "" << QVariant(1577923200000.9) << QVariant("2020-01-02");
    QTest::newRow("datetime with format") << "datetime" << "yyyyMMdd hh" << "" << QVariant(qint64(1577923200000)) << QVariant("20200102 00");
    QTest::newRow("datetime null") << "DateTime" << "" << "" << QVariant::fromValue(nullptr) << QVariant("");
    QTest::newRow("datetime null text") << "DateTime" << "" << "" << QVariant(QString()) << QVariant("");
    QTest::newRow("other as it is") << "Int64" << "" << "" << QVariant(7) << QVariant(7);
    QTest::newRow("no type as it is") << "" << "" << "" << QVariant(true) << QVariant(true);
}

void tst_TFRowBuilder::plainValue()
{
    QFETCH(QString, valueType);
    QFETCH(QString, format);
    QFETCH(QString, columnType);
    QFETCH(QVariant, value);
    QFETCH(QVariant, plain);

    tagCellValue cell;
    cell.valueType = valueType;
    cell.formatString = format;
    cell.columnType = columnType;
    cell.prevUnitFactor = 1;
    cell.showUnitFactor = 10000;
    cell.value = value;
    const QVariant got = TFSubject::cellToPlainValue(cell);
    QCOMPARE(got.type(), plain.type());
    QCOMPARE(got, plain);
}

void tst_TFRowBuilder::rawRowsKeepEveryValue_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("every JSON type") << QByteArray(
        "[{\"s\":\"x\",\"i\":1,\"big\":12345678901234567,\"d\":-1.5e-3,\"t\":true,\"f\":false,"
        "\"n\":null,\"a\":[1,\"2\",null],\"o\":{\"k\":1},\"\":\"empty key\"},"
        "5, \"text\", null, [], {}, {\"s\":\"y\",\"dup\":1,\"dup\":2}]");
    QTest::newRow("shared keys, other values") << QByteArray(
        "[{\"A\":1,\"B\":\"b\"},{\"A\":\"one\",\"B\":2.5},{\"B\":null}]");
    QTest::newRow("not an array") << QByteArray("{\"A\":1}");
}

void tst_TFRowBuilder::rawRowsKeepEveryValue()
{
    // Rows as the document has them: every element a row, every value as
    // its own variant, whatever keys the rows share.
    QFETCH(QByteArray, json);
    const QJsonDocument document = QJsonDocument::fromJson(json);
    const QJsonValue value = document.isArray() ? QJsonValue(document.array()) : QJsonValue(document.object());
    TFDataJsonTable table;
    table.initWith(value);
    QList<QVariantMap> expected;
    if (value.isArray()) {
        for (const QVariant& element : value.toArray().toVariantList())
            expected.append(element.toMap());
    }
    const QList<QVariantMap> rows = table.rows();
    QCOMPARE(rows.size(), expected.size());
    for (int i = 0; i < rows.size(); ++i) {
        QCOMPARE(rows.at(i).keys(), expected.at(i).keys());
        for (const QString& key : rows.at(i).keys()) {
            QCOMPARE(rows.at(i).value(key).userType(), expected.at(i).value(key).userType());
            QCOMPARE(rows.at(i).value(key), expected.at(i).value(key));
        }
    }
}

QTEST_MAIN(tst_TFRowBuilder)
#include "tst_tfrowbuilder.moc"
