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
    void decimalText_data();
    void decimalText();
    void otherTypes_data();
    void otherTypes();
    void unitChoice_data();
    void unitChoice();
    void tooltip();
    void alignment_data();
    void alignment();
    void textColor_data();
    void textColor();
    void colorFollowsRowsAndSkin();
    void colorOfExpressionsWithState();
    void colorPublishesAllButTheLastCell();
    void sortValue_data();
    void sortValue();
    void captionFollowsUnitChange();
    void signals_();
    void allSelectedData();
    void recordChangesInTheTreeShowAtOnce();

private:
    QLocale m_savedLocale;
};

void tst_TFSubjectTableModel::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    qputenv("TZ", "UTC");
}

void tst_TFSubjectTableModel::decimalText_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("columnType");
    QTest::addColumn<qint64>("show");
    QTest::addColumn<qint64>("prev");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("text");

    QTest::newRow("default two decimals") << "" << "" << qint64(0) << qint64(0) << QVariant(3.14159) << QVariant("3.14");
    QTest::newRow("n4") << "n4" << "" << qint64(0) << qint64(0) << QVariant(3.14159) << QVariant("3.1416");
    QTest::newRow("N4 in capitals") << "N4" << "" << qint64(0) << qint64(0) << QVariant(3.14159) << QVariant("3.1416");
    QTest::newRow("n0") << "n0" << "" << qint64(0) << qint64(0) << QVariant(2.4) << QVariant("2");
    QTest::newRow("n0 rounds half away") << "n0" << "" << qint64(0) << qint64(0) << QVariant(2.5) << QVariant("3");
    QTest::newRow("n20") << "n20" << "" << qint64(0) << qint64(0) << QVariant(0.5) << QVariant("0.50000000000000000000");
    QTest::newRow("n21 gives two") << "n21" << "" << qint64(0) << qint64(0) << QVariant(1.0) << QVariant("1.00");
    QTest::newRow("n04 gives two") << "n04" << "" << qint64(0) << qint64(0) << QVariant(1.0) << QVariant("1.00");
    QTest::newRow("other format gives two") << "#,##0.000" << "" << qint64(0) << qint64(0) << QVariant(1.0) << QVariant("1.00");
    QTest::newRow("seven digits grouped") << "" << "" << qint64(0) << qint64(0) << QVariant(1234567.891) << QVariant("1,234,567.89");
    QTest::newRow("negative grouped") << "" << "" << qint64(0) << qint64(0) << QVariant(-1234567.0) << QVariant("-1,234,567.00");
    QTest::newRow("number in text") << "" << "" << qint64(0) << qint64(0) << QVariant("42.5") << QVariant("42.50");
    QTest::newRow("not a number shows raw") << "" << "" << qint64(0) << qint64(0) << QVariant("n/a") << QVariant("n/a");
    QTest::newRow("unit column scaled by show factor")
        << "" << "BandedGridColumnWithUnit" << qint64(10000) << qint64(1) << QVariant(25000) << QVariant("2.50");
    QTest::newRow("unit column in any case")
        << "" << "bandedgridcolumnwithunit" << qint64(10000) << qint64(100) << QVariant(25000) << QVariant("250.00");
    QTest::newRow("unit column with show factor 0")
        << "" << "BandedGridColumnWithUnit" << qint64(0) << qint64(1) << QVariant(25000) << QVariant("25,000.00");
    QTest::newRow("plain column not scaled")
        << "" << "HyperLinkEdit" << qint64(10000) << qint64(1) << QVariant(25000) << QVariant("25,000.00");
    QTest::newRow("invalid") << "" << "" << qint64(0) << qint64(0) << QVariant() << QVariant();
    QTest::newRow("json null") << "" << "" << qint64(0) << qint64(0) << QVariant::fromValue(nullptr) << QVariant();
}

void tst_TFSubjectTableModel::decimalText()
{
    QFETCH(QString, format);
    QFETCH(QString, columnType);
    QFETCH(qint64, show);
    QFETCH(qint64, prev);
    QFETCH(QVariant, value);
    QFETCH(QVariant, text);

    HeaderFieldInfo info = column("X", "Decimal");
    info.formatString = format;
    info.columnType = columnType;
    info.showUnitFactor = show;
    info.prevUnitFactor = prev;
    info.unitCategory = 1;
    Table table({ info });
    table.setRows({ { value } });
    QCOMPARE(table.data(0, 0, Qt::DisplayRole), text);
}

void tst_TFSubjectTableModel::otherTypes_data()
{
    QTest::addColumn<QString>("valueType");
    QTest::addColumn<QString>("format");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("text");

    QTest::newRow("string trimmed") << "String" << "" << QVariant("  abc \t") << QVariant("abc");
    QTest::newRow("any type holding string") << "NVarString" << "" << QVariant(" 12 ") << QVariant("12");
    QTest::newRow("string of a number") << "string" << "" << QVariant(12.5) << QVariant("12.5");
    QTest::newRow("datetime default format") << "DateTime" << "" << QVariant(qint64(1577923200000)) << QVariant("2020-01-02");
    QTest::newRow("datetime with format") << "datetime" << "yyyy/MM/dd hh:mm" << QVariant(qint64(1577923260000)) << QVariant("2020/01/02 00:01");
    QTest::newRow("datetime of 0 is the epoch") << "DateTime" << "" << QVariant(0) << QVariant("1970-01-01");
    QTest::newRow("datetime from text") << "DateTime" << "" << QVariant("1577923200000") << QVariant("2020-01-02");
    QTest::newRow("other type as it is") << "Int32" << "" << QVariant(7) << QVariant(7);
    QTest::newRow("string invalid") << "String" << "" << QVariant() << QVariant();
}

void tst_TFSubjectTableModel::otherTypes()
{
    QFETCH(QString, valueType);
    QFETCH(QString, format);
    QFETCH(QVariant, value);
    QFETCH(QVariant, text);

    HeaderFieldInfo info = column("X", valueType);
    info.formatString = format;
    Table table({ info });
    table.setRows({ { value } });
    QCOMPARE(table.data(0, 0, Qt::DisplayRole), text);
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

void tst_TFSubjectTableModel::tooltip()
{
    Table table({ column("X", "String") });
    table.setRows({ { "abc" }, { "  " } });
    QCOMPARE(table.data(0, 0, Qt::ToolTipRole), QVariant("<p style='color:#0060E3'>abc</p>"));
    QVERIFY(!table.data(1, 0, Qt::ToolTipRole).isValid());
}

void tst_TFSubjectTableModel::alignment_data()
{
    QTest::addColumn<int>("textAlignment");
    QTest::addColumn<QString>("valueType");
    QTest::addColumn<int>("expected");

    for (const char* type : { "Decimal", "Double", "Int16", "Int32", "Int64", "UInt16", "UInt32", "UInt64" })
        QTest::newRow(type) << 0 << type << 130;
    QTest::newRow("String") << 0 << "String" << 129;
    QTest::newRow("DateTime") << 0 << "DateTime" << 132;
    QTest::newRow("decimal in lower case is exact-matched") << 0 << "decimal" << 132;
    QTest::newRow("string in lower case") << 0 << "string" << 132;
    QTest::newRow("left") << 1 << "Decimal" << 129;
    QTest::newRow("right") << 3 << "String" << 130;
    QTest::newRow("two is centre") << 2 << "Decimal" << 132;
    QTest::newRow("negative is centre") << -1 << "String" << 132;
}

void tst_TFSubjectTableModel::alignment()
{
    QFETCH(int, textAlignment);
    QFETCH(QString, valueType);
    QFETCH(int, expected);
    HeaderFieldInfo info = column("X", valueType);
    info.textAlignment = textAlignment;
    Table table({ info });
    table.setRows({ { 1 } });
    QCOMPARE(table.data(0, 0, Qt::TextAlignmentRole), QVariant(expected));
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

    emit TFCore::instance()->signalSkinChanged(QStringLiteral("white"));
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
    emit TFCore::instance()->signalSkinChanged(QStringLiteral("white"));
    HeaderFieldInfo a = column("A", "Decimal");
    a.cellStyleExpression = QStringLiteral("$skin == 'black' ? ($A > 0 ? 'yellow' : 'cyan') : ($A > 0 ? 'red' : 'green')");
    Table table({ a, column("B", "String") });
    table.setRows({ { 1, "x" }, { -1, "y" } });
    QCOMPARE(table.data(0, 0, Qt::ForegroundRole).value<QColor>(), QColor("red"));
    QCOMPARE(table.data(1, 0, Qt::ForegroundRole).value<QColor>(), QColor("green"));

    emit TFCore::instance()->signalSkinChanged(QStringLiteral("black"));
    QCOMPARE(table.data(0, 0, Qt::ForegroundRole).value<QColor>(), QColor("yellow"));
    QCOMPARE(table.data(1, 0, Qt::ForegroundRole).value<QColor>(), QColor("cyan"));

    table.setRows({ { -1, "x" }, { 1, "y" } });
    QCOMPARE(table.data(0, 0, Qt::ForegroundRole).value<QColor>(), QColor("cyan"));
    QCOMPARE(table.data(1, 0, Qt::ForegroundRole).value<QColor>(), QColor("yellow"));

    // A new model writes the host's current skin into the one engine, and
    // every model sees it; each still sees its own rows.
    QVERIFY(TFCore::instance()->getCurrentSkinId() != QLatin1String("black"));
    Table other({ a, column("B", "String") });
    other.setRows({ { 1, "z" } });
    QCOMPARE(other.data(0, 0, Qt::ForegroundRole).value<QColor>(), QColor("red"));
    QCOMPARE(table.data(0, 0, Qt::ForegroundRole).value<QColor>(), QColor("green"));
    QCOMPARE(table.data(1, 0, Qt::ForegroundRole).value<QColor>(), QColor("red"));
    emit TFCore::instance()->signalSkinChanged(QStringLiteral("white"));
}

void tst_TFSubjectTableModel::colorOfExpressionsWithState()
{
    // An expression that keeps state is evaluated on every paint.
    HeaderFieldInfo a = column("A", "Decimal");
    a.cellStyleExpression = QStringLiteral("(this.paints = (this.paints || 0) + 1) > 1 ? 'red' : 'blue'");
    Table table({ a, column("B", "String") });
    table.setRows({ { 1, "x" } });
    QCOMPARE(table.data(0, 0, Qt::ForegroundRole).value<QColor>(), QColor("blue"));
    QCOMPARE(table.data(0, 0, Qt::ForegroundRole).value<QColor>(), QColor("red"));

    // And one that writes a field is overwritten by the next publication.
    HeaderFieldInfo w = column("W", "Decimal");
    w.cellStyleExpression = QStringLiteral("($W = '5') && ''");
    HeaderFieldInfo r = column("R", "Decimal");
    r.cellStyleExpression = QStringLiteral("$W == '5' ? 'red' : 'green'");
    Table writes({ w, r, column("B", "String") });
    writes.setRows({ { 1, 2, "x" } });
    QVERIFY(!writes.data(0, 0, Qt::ForegroundRole).isValid());
    QCOMPARE(writes.data(0, 1, Qt::ForegroundRole).value<QColor>(), QColor("green"));
}

void tst_TFSubjectTableModel::colorPublishesAllButTheLastCell()
{
    // The last cell of a row is never published: the expression reads
    // what the engine held before.
    HeaderFieldInfo a = column("A", "Decimal");
    a.cellStyleExpression = QStringLiteral("typeof $LAST == 'undefined' ? 'red' : 'green'");
    Table table({ a, column("LAST", "String") });
    table.setRows({ { 1, "x" } });
    QCOMPARE(table.data(0, 0, Qt::ForegroundRole).value<QColor>(), QColor("red"));
    // A longer row publishes it.
    Table longer({ a, column("LAST", "String") });
    longer.setRows({ { 1, "x", "further" } });
    QCOMPARE(longer.data(0, 0, Qt::ForegroundRole).value<QColor>(), QColor("green"));
    // And from then on the engine holds it, also for the short row.
    QCOMPARE(table.data(0, 0, Qt::ForegroundRole).value<QColor>(), QColor("green"));
}

void tst_TFSubjectTableModel::sortValue_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("valueType");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("sortValue");

    QTest::newRow("decimal") << "X" << "Decimal" << QVariant("12.5") << QVariant(12.5);
    QTest::newRow("datetime") << "X" << "DATETIME" << QVariant(qint64(1000)) << QVariant(1000.0);
    QTest::newRow("string cut to ten") << "X" << "String" << QVariant("abcdefghijklmn") << QVariant("abcdefghij");
    QTest::newRow("other") << "X" << "Int32" << QVariant(5) << QVariant(5);
}

void tst_TFSubjectTableModel::sortValue()
{
    QFETCH(QString, field);
    QFETCH(QString, valueType);
    QFETCH(QVariant, value);
    QFETCH(QVariant, sortValue);
    Table table({ column(field, valueType) });
    table.setRows({ { value } });
    QCOMPARE(table.data(0, 0, TFSubjectTableModel::SortValueRole), sortValue);
}

void tst_TFSubjectTableModel::captionFollowsUnitChange()
{
    HeaderFieldInfo unit = column("Y", "Decimal");
    unit.columnType = QStringLiteral("BandedGridColumnWithUnit");
    unit.showUnit = QStringLiteral("元");
    unit.unitCategory = 1;
    unit.captionShowType = 1;
    Table table({ column("A", "String"), unit });
    QCOMPARE(table.model.headerData(1, Qt::Horizontal), QVariant("Y(元)"));

    // A unit change renames through the tree, and shows with the next setHeader.
    table.root.updateUnit(QStringLiteral("亿元"), 1);
    QCOMPARE(table.model.headerData(1, Qt::Horizontal), QVariant("Y(元)"));
    table.model.setHeader(&table.root);
    QCOMPARE(table.model.headerData(1, Qt::Horizontal), QVariant("Y(亿元)"));
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
