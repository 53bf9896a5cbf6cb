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

// A cell as "NAME=value", invalid as "~", then, unless all are a new cell's,
// its settings: (type,alignment,prev/show/base factor,category,caption show
// type,column type,format,url,security id).
QString cellText(const tagCellValue& c)
{
    const QString value = c.fieldName + '=' + (c.value.isValid() ? c.value.toString() : QStringLiteral("~"));
    const QString settings = QStringLiteral("(%1,%2,%3/%4/%5,%6,%7,%8,%9,%10,%11)")
                                 .arg(c.valueType).arg(c.textAlignment).arg(c.prevUnitFactor).arg(c.showUnitFactor)
                                 .arg(c.baseShowUnitFactor).arg(c.unitCategory).arg(c.captionShowType)
                                 .arg(c.columnType, c.formatString, c.url).arg(c.secuId);
    return settings == QLatin1String("(,0,1/1/-1,-1,-1,,,,0)") ? value : value + settings;
}

} // namespace

class tst_TFRowBuilder : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cells_data();
    void cells();
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
}

void tst_TFRowBuilder::init()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

void tst_TFRowBuilder::cleanup()
{
    QLocale::setDefault(QLocale::system());
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

void tst_TFRowBuilder::cells_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("typeLetters");
    QTest::addColumn<int>("row");
    QTest::addColumn<QString>("cells");

    // Leaves first, with their column's settings and the row's security id;
    // then the further keys in key order, typed by the key's record.
    // SUM([ROE]) counts every key but "ROE" itself: dates, codes in text,
    // the security id and the shares too; names count as 0.
    QTest::newRow("bands view") << "bands_view.json" << false << 0
        << "SECU_CODE= 600000 (String,1,0/0/0,0,0,,,view:?secu={SECU_ID},101) | SECU_SHT=浦发银行(String,0,0/0/0,0,0,,,,101) | "
           "NET_PROFIT=1234560(Decimal,0,1/10000/10000,1,1,BandedGridColumnWithUnit,n2,,101) | "
           "ROE_SUM=1577838635664.5(decimal,0,0/0/0,0,0,,N4,,101) | RATIO=1234.56(Decimal,0,0/0/0,0,0,,,,101) | "
           "END_DATE=1577836800000(DateTime,0,0/0/0,0,0,,yyyy-MM-dd,,101) | 2019__ROE=1.5(Double,0,1/1/-1,-1,-1,,,,0) | "
           "2020__ROE=2 | HIDDEN_COL=h(String,0,1/1/-1,-1,-1,,,,0) | SECU_ID=101 | SHARES=1000(Int64,0,1/1/-1,-1,-1,,,,0)";
    // The id as text, a missing name, a division by zero.
    QTest::newRow("bands view, second row") << "bands_view.json" << false << 1
        << "SECU_CODE=600036(String,1,0/0/0,0,0,,,view:?secu={SECU_ID},102) | SECU_SHT=~(String,0,0/0/0,0,0,,,,102) | "
           "NET_PROFIT=-250000(Decimal,0,1/10000/10000,1,1,BandedGridColumnWithUnit,n2,,102) | "
           "ROE_SUM=350141(decimal,0,0/0/0,0,0,,N4,,102) | RATIO=~(Decimal,0,0/0/0,0,0,,,,102) | "
           "END_DATE=0(DateTime,0,0/0/0,0,0,,yyyy-MM-dd,,102) | 2019__ROE=3(Double,0,1/1/-1,-1,-1,,,,0) | ROE=9 | "
           "SECU_ID=102 | SHARES=0(Int64,0,1/1/-1,-1,-1,,,,0)";
    // The sum over no keys is 0; every other cell is invalid.
    QTest::newRow("bands view, empty row") << "bands_view.json" << false << 2
        << "SECU_CODE=~(String,1,0/0/0,0,0,,,view:?secu={SECU_ID},0) | SECU_SHT=~(String,0,0/0/0,0,0,,,,0) | "
           "NET_PROFIT=~(Decimal,0,1/10000/10000,1,1,BandedGridColumnWithUnit,n2,,0) | "
           "ROE_SUM=0(decimal,0,0/0/0,0,0,,N4,,0) | RATIO=~(Decimal,0,0/0/0,0,0,,,,0) | "
           "END_DATE=~(DateTime,0,0/0/0,0,0,,yyyy-MM-dd,,0)";
    // The group leaf reads the group field of the row.
    QTest::newRow("cross view") << "cross_view.json" << false << 0
        << "ITEM=营业收入(String,0,0/0/0,0,0,,,,0) | "
           "2020__VAL=523456789.5(Decimal,0,1/100000000/100000000,1,3,BandedGridColumnWithUnit,,,0) | "
           "2021__VAL=612345678(Decimal,0,0/0/0,0,0,,,,0) | ITEM=营业收入(,0,0/0/0,0,0,,,,0) | EXTRA=e";
    QTest::newRow("cross view, second row") << "cross_view.json" << false << 1
        << "ITEM=净利润(String,0,0/0/0,0,0,,,,0) | "
           "2020__VAL=n/a(Decimal,0,1/100000000/100000000,1,3,BandedGridColumnWithUnit,,,0) | "
           "2021__VAL=~(Decimal,0,0/0/0,0,0,,,,0) | ITEM=净利润(,0,0/0/0,0,0,,,,0)";
    // For the export a further cell's type is the letter of a text.
    QTest::newRow("cross view, export") << "cross_view.json" << true << 0
        << "ITEM=营业收入(String,0,0/0/0,0,0,,,,0) | "
           "2020__VAL=523456789.5(Decimal,0,1/100000000/100000000,1,3,BandedGridColumnWithUnit,,,0) | "
           "2021__VAL=612345678(Decimal,0,0/0/0,0,0,,,,0) | ITEM=营业收入(,0,0/0/0,0,0,,,,0) | "
           "EXTRA=e(" + QString(QChar(int(QVariant::String))) + ",0,1/1/-1,-1,-1,,,,0)";
}

void tst_TFRowBuilder::cells()
{
    QFETCH(QString, file);
    QFETCH(bool, typeLetters);
    QFETCH(int, row);
    QFETCH(QString, cells);

    if (file.startsWith("bands")) {
        for (int i = 0; i < 4; ++i)
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^cant find field name:"));
    }
    const QList<RowData> rows = build(file, typeLetters);
    QStringList texts;
    for (const tagCellValue& cell : rows.value(row))
        texts << cellText(cell);
    QCOMPARE(texts.join(" | "), cells);
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
    QTest::newRow("datetime of 0 is the epoch") << "DateTime" << "" << "" << QVariant(0) << QVariant("1970-01-01");
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
