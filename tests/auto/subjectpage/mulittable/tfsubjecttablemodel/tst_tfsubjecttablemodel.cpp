#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "tfqsscommon.h"

#include "tfcore/tfcore.h"

#include <QtTest>

using TFTableModelData::tagCellValue;

namespace {

HeaderFieldInfo column(const QString& name, const QString& valueType)
{
    HeaderFieldInfo info;
    info.fieldName = name;
    info.caption = name;
    info.valueType = valueType;
    info.visible = true;
    return info;
}

tagCellValue cellOf(const HeaderFieldInfo& info, const QVariant& value)
{
    tagCellValue cell;
    cell.fieldName = info.fieldName;
    cell.valueType = info.valueType;
    cell.textAlignment = info.textAlignment;
    cell.url = info.url;
    cell.formatString = info.formatString;
    cell.prevUnitFactor = info.prevUnitFactor;
    cell.showUnitFactor = info.showUnitFactor;
    cell.unitCategory = info.unitCategory;
    cell.columnType = info.columnType;
    cell.value = value;
    return cell;
}

// A model over one tree; each test row is the record list's cells.
struct Table
{
    explicit Table(const QList<HeaderFieldInfo>& fields)
        : fields(fields)
    {
        buildHeaderTree(&root, fields, false, QString());
        model.setHeader(&root);
    }
    void setRows(const QList<QVariantList>& values)
    {
        QList<RowData> rows;
        for (const QVariantList& row : values) {
            RowData cells;
            for (int i = 0; i < row.size(); ++i)
                cells.append(cellOf(i < fields.size() ? fields.at(i) : column("extra", "String"), row.at(i)));
            rows.append(cells);
        }
        model.setRows(rows);
    }
    QVariant data(int row, int column, int role) const { return model.data(model.index(row, column), role); }
    // The colour names of a column, row by row; "-" for none.
    QString colors(int column = 0) const
    {
        QStringList names;
        for (int row = 0; row < model.rowCount(); ++row) {
            const QVariant color = data(row, column, Qt::ForegroundRole);
            names << (color.isValid() ? color.value<QColor>().name() : QStringLiteral("-"));
        }
        return names.join(',');
    }

    QList<HeaderFieldInfo> fields;
    TFTreeStruct root{ QString() };
    TFSubjectTableModel model;
};

} // namespace

class tst_TFSubjectTableModel : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cellData_data();
    void cellData();
    void unitChoice_data();
    void unitChoice();
    void textColor_data();
    void textColor();
    void colorFollowsRowsAndSkin();
    void colorOfExpressionsWithState();
    void colorPublishesAllButTheLastCell();
    void signals_();
    void allSelectedData();
    void recordChangesInTheTreeShowAtOnce();
};

void tst_TFSubjectTableModel::initTestCase()
{
    qputenv("TZ", "UTC");
}

void tst_TFSubjectTableModel::init()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    emit TFCore::instance()->signalSkinChanged(QStringLiteral("white"));
}

// Whatever a test left: the default locale and the skin the models hear of.
void tst_TFSubjectTableModel::cleanup()
{
    QLocale::setDefault(QLocale::system());
    emit TFCore::instance()->signalSkinChanged(TFCore::instance()->getCurrentSkinId());
}

void tst_TFSubjectTableModel::cellData_data()
{
    QTest::addColumn<QString>("valueType");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("columnType");
    QTest::addColumn<qint64>("show");   // the show factor; the delivered one is 1
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("textAlignment");
    QTest::addColumn<int>("role");
    QTest::addColumn<QVariant>("expected");

    const auto text = [](const char* name, const char* type, const char* format, QVariant value, QVariant expected,
                         const char* columnType = "", qint64 show = 0, int role = Qt::DisplayRole, int align = 0) {
        QTest::newRow(name) << type << format << columnType << show << value << align << role << expected;
    };
    text("default two decimals", "Decimal", "", 3.14159, "3.14");
    text("n4", "Decimal", "n4", 3.14159, "3.1416");
    text("N4 in capitals", "Decimal", "N4", 3.14159, "3.1416");
    text("n0", "Decimal", "n0", 2.4, "2");
    text("n0 rounds half away", "Decimal", "n0", 2.5, "3");
    text("n20", "Decimal", "n20", 0.5, "0.50000000000000000000");
    text("n21 gives two", "Decimal", "n21", 1.0, "1.00");
    text("n04 gives two", "Decimal", "n04", 1.0, "1.00");
    text("other format gives two", "Decimal", "#,##0.000", 1.0, "1.00");
    text("seven digits grouped", "Decimal", "", 1234567.891, "1,234,567.89");
    text("negative grouped", "Decimal", "", -1234567.0, "-1,234,567.00");
    text("number in text", "Decimal", "", "42.5", "42.50");
    text("not a number shows raw", "Decimal", "", "n/a", "n/a");
    text("unit column scaled by show factor", "Decimal", "", 25000, "2.50", "BandedGridColumnWithUnit", 10000);
    text("unit column in any case", "Decimal", "", 25000, "2.50", "bandedgridcolumnwithunit", 10000);
    text("unit column with show factor 0", "Decimal", "", 25000, "25,000.00", "BandedGridColumnWithUnit", 0);
    text("plain column not scaled", "Decimal", "", 25000, "25,000.00", "HyperLinkEdit", 10000);
    text("invalid", "Decimal", "", QVariant(), QVariant());
    text("json null", "Decimal", "", QVariant::fromValue(nullptr), QVariant());
    text("string trimmed", "String", "", "  abc \t", "abc");
    text("any type holding string", "NVarString", "", " 12 ", "12");
    text("string of a number", "string", "", 12.5, "12.5");
    text("datetime default format", "DateTime", "", qint64(1577923200000), "2020-01-02");
    text("datetime with format", "datetime", "yyyy/MM/dd hh:mm", qint64(1577923260000), "2020/01/02 00:01");
    text("datetime of 0 is the epoch", "DateTime", "", 0, "1970-01-01");
    text("datetime from text", "DateTime", "", "1577923200000", "2020-01-02");
    text("other type as it is", "Int32", "", 7, 7);
    text("string invalid", "String", "", QVariant(), QVariant());
    // The tooltip shows a text in the link colour; a blank one has none.
    text("tooltip", "String", "", "abc", "<p style='color:#0060E3'>abc</p>", "", 0, Qt::ToolTipRole);
    text("no tooltip of blanks", "String", "", "  ", QVariant(), "", 0, Qt::ToolTipRole);
    // What the grid sorts by.
    const int sort = TFSubjectTableModel::SortValueRole;
    text("sort: decimal", "Decimal", "", "12.5", 12.5, "", 0, sort);
    text("sort: datetime", "DATETIME", "", qint64(1000), 1000.0, "", 0, sort);
    text("sort: string cut to ten", "String", "", "abcdefghijklmn", "abcdefghij", "", 0, sort);
    text("sort: other", "Int32", "", 5, 5, "", 0, sort);
    // Numbers right, texts left, the rest centred, unless the column says.
    const auto align = [&](const char* name, const char* type, int textAlignment, int expected) {
        text(name, type, "", 1, expected, "", 0, Qt::TextAlignmentRole, textAlignment);
    };
    for (const char* type : { "Decimal", "Double", "Int16", "Int32", "Int64", "UInt16", "UInt32", "UInt64" })
        align(type, type, 0, 130);
    align("String", "String", 0, 129);
    align("DateTime", "DateTime", 0, 132);
    align("decimal in lower case is exact-matched", "decimal", 0, 132);
    align("string in lower case", "string", 0, 132);
    align("left", "Decimal", 1, 129);
    align("right", "String", 3, 130);
    align("two is centre", "Decimal", 2, 132);
    align("negative is centre", "String", -1, 132);
}

void tst_TFSubjectTableModel::cellData()
{
    QFETCH(QString, valueType);
    QFETCH(QString, format);
    QFETCH(QString, columnType);
    QFETCH(qint64, show);
    QFETCH(QVariant, value);
    QFETCH(int, textAlignment);
    QFETCH(int, role);
    QFETCH(QVariant, expected);

    HeaderFieldInfo info = column("X", valueType);
    info.formatString = format;
    info.columnType = columnType;
    info.showUnitFactor = show;
    info.prevUnitFactor = 1;
    info.unitCategory = 1;
    info.textAlignment = textAlignment;
    Table table({ info });
    table.setRows({ { value } });
    QCOMPARE(table.data(0, 0, role), expected);
}

void tst_TFSubjectTableModel::unitChoice_data()
{
    QTest::addColumn<int>("exponent");
    QTest::addColumn<int>("category");
    QTest::addColumn<QString>("yuan");
    QTest::addColumn<QString>("shares");

    // Column "yuan": category 1, delivered in yuan, shown in ten thousands.
    // Column "shares": category 2, the same in shares.
    QTest::newRow("nothing chosen") << 0 << 0 << "123.46" << "123.46";
    QTest::newRow("wan yuan") << 4 << 1 << "123.46" << "1,234,560.00";
    QTest::newRow("yi gu leaves yuan unscaled") << 8 << 2 << "1,234,560.00" << "0.01";
    QTest::newRow("yuan, factor 1") << 0 << 1 << "1,234,560.00" << "1,234,560.00";
    QTest::newRow("per mille truncates to 0") << -1 << 1 << "1,234,560.00" << "1,234,560.00";
    QTest::newRow("unknown code") << -100 << 1 << "1,234,560.00" << "1,234,560.00";
}

void tst_TFSubjectTableModel::unitChoice()
{
    QFETCH(int, exponent);
    QFETCH(int, category);
    QFETCH(QString, yuan);
    QFETCH(QString, shares);

    HeaderFieldInfo y = column("Y", "Decimal");
    y.columnType = QStringLiteral("BandedGridColumnWithUnit");
    y.unitCategory = 1;
    y.prevUnitFactor = 1;
    y.showUnitFactor = 10000;
    HeaderFieldInfo s = y;
    s.fieldName = QStringLiteral("S");
    s.unitCategory = 2;
    Table table({ y, s });
    table.setRows({ { 1234560, 1234560 } });
    if (exponent != 0 || category != 0)
        table.model.setUnit(exponent, category);
    QCOMPARE(table.data(0, 0, Qt::DisplayRole).toString(), yuan);
    QCOMPARE(table.data(0, 1, Qt::DisplayRole).toString(), shares);
}

void tst_TFSubjectTableModel::textColor_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QVariant>("color");

    QTest::newRow("a name") << "'red'" << QVariant(QColor("red"));
    QTest::newRow("hex") << "\"#00ff00\"" << QVariant(QColor("#00ff00"));
    QTest::newRow("by field") << "$A > 0 ? 'red' : 'green'" << QVariant(QColor("red"));
    QTest::newRow("by field, other branch") << "$A < 0 ? 'red' : 'green'" << QVariant(QColor("green"));
    QTest::newRow("fields are text") << "$A + $B" << QVariant(QColor());
    QTest::newRow("text comparison") << "$B == '2' ? 'blue' : ''" << QVariant(QColor("blue"));
    QTest::newRow("a function is called")
        << "function() { if ($A > 1) return 'red'; return 'green'; }" << QVariant(QColor("green"));
    QTest::newRow("a function of Math") << "Math.abs(-$A) > 0.5 ? 'red' : 'blue'" << QVariant(QColor("red"));
    QTest::newRow("with a division") << "$A / 2 > 0.2 ? 'red' : 'blue'" << QVariant(QColor("red"));
    QTest::newRow("default colour") << "'$use_default_color'" << QVariant();
    QTest::newRow("empty text") << "''" << QVariant();
    QTest::newRow("a number") << "42" << QVariant();
    QTest::newRow("null") << "null" << QVariant();
    QTest::newRow("undefined name") << "$NOPE.x" << QVariant();
    QTest::newRow("syntax error") << "'red' +" << QVariant();
    QTest::newRow("unbalanced text closes the wrapper") << "'red'), ('blue'" << QVariant(QColor("blue"));
    QTest::newRow("thrown error") << "(function(){ throw new Error('x'); })()" << QVariant();
    QTest::newRow("skin") << "$skin == 'black' ? 'white' : 'black'" << QVariant(QColor("black"));
}

void tst_TFSubjectTableModel::textColor()
{
    QFETCH(QString, expression);
    QFETCH(QVariant, color);

    HeaderFieldInfo a = column("A", "Decimal");
    a.cellStyleExpression = expression;
    Table table({ a, column("B", "String"), column("C", "String") });
    table.setRows({ { 0.75, "2", "x" } });
    // Asked twice: a kept colour is the colour asked afresh.
    for (int pass = 0; pass < 2; ++pass) {
        const QVariant got = table.data(0, 0, Qt::ForegroundRole);
        QCOMPARE(got.isValid(), color.isValid());
        if (color.isValid())
            QCOMPARE(got.value<QColor>(), color.value<QColor>());
    }
    // A column without an expression has no colour.
    QVERIFY(!table.data(0, 1, Qt::ForegroundRole).isValid());
}

void tst_TFSubjectTableModel::colorFollowsRowsAndSkin()
{
    HeaderFieldInfo a = column("A", "Decimal");
    a.cellStyleExpression = QStringLiteral("$skin == 'black' ? ($A > 0 ? 'yellow' : 'cyan') : ($A > 0 ? 'red' : 'green')");
    Table table({ a, column("B", "String") });
    table.setRows({ { 1, "x" }, { -1, "y" } });
    QCOMPARE(table.colors(), QString("#ff0000,#008000"));
    emit TFCore::instance()->signalSkinChanged(QStringLiteral("black"));
    QCOMPARE(table.colors(), QString("#ffff00,#00ffff"));
    table.setRows({ { -1, "x" }, { 1, "y" } });
    QCOMPARE(table.colors(), QString("#00ffff,#ffff00"));

    // A new model writes the host's current skin into the one engine, and
    // every model sees it; each still sees its own rows.
    QVERIFY(TFCore::instance()->getCurrentSkinId() != QLatin1String("black"));
    Table other({ a, column("B", "String") });
    other.setRows({ { 1, "z" } });
    QCOMPARE(other.colors(), QString("#ff0000"));
    QCOMPARE(table.colors(), QString("#008000,#ff0000"));
}

void tst_TFSubjectTableModel::colorOfExpressionsWithState()
{
    // An expression that keeps state is evaluated on every paint.
    HeaderFieldInfo a = column("A", "Decimal");
    a.cellStyleExpression = QStringLiteral("(this.paints = (this.paints || 0) + 1) > 1 ? 'red' : 'blue'");
    Table table({ a, column("B", "String") });
    table.setRows({ { 1, "x" } });
    const QString firstPaint = table.colors();
    QCOMPARE(firstPaint + table.colors(), QString("#0000ff#ff0000"));

    // And one that writes a field is overwritten by the next publication.
    HeaderFieldInfo w = column("W", "Decimal");
    w.cellStyleExpression = QStringLiteral("($W = '5') && ''");
    HeaderFieldInfo r = column("R", "Decimal");
    r.cellStyleExpression = QStringLiteral("$W == '5' ? 'red' : 'green'");
    Table writes({ w, r, column("B", "String") });
    writes.setRows({ { 1, 2, "x" } });
    QCOMPARE(writes.colors(0), QString("-"));
    QCOMPARE(writes.colors(1), QString("#008000"));
}

void tst_TFSubjectTableModel::colorPublishesAllButTheLastCell()
{
    // The last cell of a row is never published: the expression reads
    // what the engine held before. A longer row publishes it, and from
    // then on the engine holds it, also for the short row.
    HeaderFieldInfo a = column("A", "Decimal");
    a.cellStyleExpression = QStringLiteral("typeof $LAST == 'undefined' ? 'red' : 'green'");
    Table table({ a, column("LAST", "String") });
    table.setRows({ { 1, "x" } });
    QCOMPARE(table.colors(), QString("#ff0000"));
    Table longer({ a, column("LAST", "String") });
    longer.setRows({ { 1, "x", "further" } });
    QCOMPARE(longer.colors(), QString("#008000"));
    QCOMPARE(table.colors(), QString("#008000"));
}

void tst_TFSubjectTableModel::signals_()
{
    Table table({ column("A", "String"), column("B", "String") });
    QSignalSpy changed(&table.model, &QAbstractItemModel::dataChanged);
    QSignalSpy reset(&table.model, &QAbstractItemModel::modelReset);
    QSignalSpy header(&table.model, &QAbstractItemModel::headerDataChanged);

    table.setRows({ { "a", "b" }, { "c", "d" }, { "e", "f" } });
    QCOMPARE(reset.count(), 0);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toModelIndex(), table.model.index(0, 0));
    QCOMPARE(changed.at(0).at(1).toModelIndex(), table.model.index(2, 1));
    QVERIFY(changed.at(0).at(2).value<QVector<int>>().isEmpty());

    table.model.setUnit(4, 1);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(changed.at(1).at(2).value<QVector<int>>(), QVector<int>{ Qt::DisplayRole });
    QCOMPARE(table.model.unitFactor(), 10000);

    table.model.setHeader(&table.root);
    QCOMPARE(header.count(), 2);

    table.model.clear();
    QCOMPARE(reset.count(), 1);
    QCOMPARE(table.model.rowCount(), 0);
    table.model.setUnit(2, 7);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(table.model.unitFactor(), 100);
    QCOMPARE(table.model.unitCategory(), 7);
    table.model.setUnit(-1, 7);
    QCOMPARE(table.model.unitFactor(), 0);
}

void tst_TFSubjectTableModel::allSelectedData()
{
    Table table({ column("A", "String"), column("B", "Decimal") });
    table.setRows({ { " a ", 1234.5, "further" }, { "b" } });
    QList<QList<QVariant>> out;
    table.model.getAllSelectedData(&out);
    QCOMPARE(out.size(), 2);
    QCOMPARE(out.at(0), (QList<QVariant>{ "a", "1,234.50" }));
    QCOMPARE(out.at(1), QList<QVariant>{ "b" });
    QList<RowData> rows;
    table.model.rows(rows);
    QCOMPARE(rows.size(), 2);
    QCOMPARE(rows.first().size(), 3);
}

void tst_TFSubjectTableModel::recordChangesInTheTreeShowAtOnce()
{
    // The decimal path reads the column's record from the tree at every
    // call: what the model works out from it once must follow a change.
    HeaderFieldInfo info = column("X", "Decimal");
    info.formatString = QStringLiteral("n1");
    HeaderFieldInfo date = column("D", "DateTime");
    Table table({ info, date });
    table.setRows({ { 25000.25, qint64(1577923200000) } });
    QCOMPARE(table.data(0, 0, Qt::DisplayRole), QVariant("25,000.3"));
    QCOMPARE(table.data(0, 1, Qt::DisplayRole), QVariant("2020-01-02"));

    HeaderFieldInfo& record = table.root.leaves().first()->info();
    record.formatString = QStringLiteral("n3");
    QCOMPARE(table.data(0, 0, Qt::DisplayRole), QVariant("25,000.250"));
    record.columnType = QStringLiteral("BandedGridColumnWithUnit");
    record.showUnitFactor = 10000;
    record.prevUnitFactor = 1;
    QCOMPARE(table.data(0, 0, Qt::DisplayRole), QVariant("2.500"));
    table.root.leaves().at(1)->info().formatString = QStringLiteral("dd/MM/yyyy");
    QCOMPARE(table.data(0, 1, Qt::DisplayRole), QVariant("02/01/2020"));
}

QTEST_MAIN(tst_TFSubjectTableModel)
#include "tst_tfsubjecttablemodel.moc"
