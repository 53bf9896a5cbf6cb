#include "tfexcelwritter.h"
#include "tfxlsxdocument.h"

#include "mulittable/tfheaderdatastruct.h"

#include "workbookreader.h"

#include <QDir>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <memory>

using Rows = QList<QVariantList>;
Q_DECLARE_METATYPE(Rows)

namespace {

// A header from a compact list: "A,G,B<G,C<G" makes A and G top level and
// B, C columns of band G; "~B" hides leaf B after the tree is built (as the
// hidden group leaf is); captions are the field names.
std::unique_ptr<TFTreeStruct> header(const QString &layout, bool grouped = false)
{
    const QStringList items = layout.split(',', Qt::SkipEmptyParts);
    QList<HeaderFieldInfo> fields;
    for (const QString &item : items) {
        HeaderFieldInfo info;
        info.fieldName = info.caption = item.section('<', 0, 0).remove('~');
        info.ownerBand = item.section('<', 1);
        info.visible = true;
        if ((layout + ',').contains('<' + info.fieldName + ','))
            info.columnType = QStringLiteral("Band");
        fields.append(info);
    }
    auto root = std::make_unique<TFTreeStruct>(QString());
    buildHeaderTree(root.get(), fields, grouped, QStringLiteral("GRP"));
    for (const QString &item : items.filter(QRegularExpression("^~")))
        root->findField(item.section('<', 0, 0).mid(1))->info().visible = false;
    return root;
}

} // namespace

class tst_TFExcelWritter : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void columnLetters_data();
    void columnLetters();
    void table_data();
    void table();
    void values_data();
    void values();
    void nothingHalfWritten_data();
    void nothingHalfWritten();

private:
    QString write(TFTreeStruct *tree, const Rows &rows, const QString &name = QStringLiteral("t.xlsx"));
    QTemporaryDir m_dir;
};

void tst_TFExcelWritter::initTestCase()
{
    QVERIFY(m_dir.isValid());
    // The writer logs a line per header node; the suite needs none of them.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
}

QString tst_TFExcelWritter::write(TFTreeStruct *tree, const Rows &rows, const QString &name)
{
    const QString path = m_dir.filePath(name);
    TFXlsxDocument doc(path);
    if (!TFExcelWritter::writeHeader(doc, tree) || !TFExcelWritter::writeData(doc, tree, rows) || !doc.save())
        return QString();
    return path;
}

void tst_TFExcelWritter::columnLetters_data()
{
    QTest::addColumn<int>("col");
    QTest::addColumn<QString>("letters");
    QTest::newRow("first") << 1 << "A";
    QTest::newRow("Z") << 26 << "Z";
    QTest::newRow("AA") << 27 << "AA";
    QTest::newRow("AZ") << 52 << "AZ";
    QTest::newRow("beyond CZ, the last of 104: DA") << 105 << "DA";
    QTest::newRow("ZZ") << 702 << "ZZ";
    QTest::newRow("AAA") << 703 << "AAA";
    QTest::newRow("last column of a sheet") << 16384 << "XFD";
}

void tst_TFExcelWritter::columnLetters()
{
    QFETCH(int, col);
    QFETCH(QString, letters);
    QCOMPARE(TFExcelWritter::columnLetters(col), letters);
    QCOMPARE(TFExcelWritter::cellName(7, col), letters + QLatin1Char('7'));
}

void tst_TFExcelWritter::table_data()
{
    QTest::addColumn<QString>("layout");
    QTest::addColumn<bool>("grouped");
    QTest::addColumn<Rows>("rows");
    QTest::addColumn<QStringList>("cells");
    QTest::addColumn<QStringList>("merges");
    QTest::addColumn<QString>("widths");      // the columns given width 25

    QTest::newRow("flat: one header row, data from row 2")
        << "A,B,C" << false << Rows{{1.5, QStringLiteral("x"), 2}, {3, QStringLiteral("y"), 4}}
        << QStringList{"A1=A", "B1=B", "C1=C", "A2=1.5", "B2=x", "C2=2", "A3=3", "B3=y", "C3=4"}
        << QStringList() << "ABC";
    QTest::newRow("banded: band merged over its two leaves, flat columns at the bottom row")
        << "A,G,B<G,C<G,D" << false << Rows{{1, 2, 3, 4}}
        << QStringList{"A2=A", "B1=G", "B2=B", "C2=C", "D2=D", "A3=1", "B3=2", "C3=3", "D3=4"}
        << QStringList{"B1:C1"} << "ABCD";
    QTest::newRow("two levels of bands")
        << "A,H,G<H,B<G,C<G,E<H" << false << Rows{{1, 2, 3, 4}}
        << QStringList{"A3=A", "B1=H", "B2=G", "B3=B", "C3=C", "D3=E", "A4=1", "B4=2", "C4=3", "D4=4"}
        << QStringList{"B1:D1", "B2:C2"} << "ABCD";
    QTest::newRow("band of one leaf: no merge")
        << "G,B<G,C" << false << Rows{{1, 2}}
        << QStringList{"A1=G", "A2=B", "B2=C", "A3=1", "B3=2"} << QStringList() << "AB";
    QTest::newRow("hidden leaf: its header column stays empty, the data close up")
        << "A,~B,C" << false << Rows{{1, 2, 3}}
        << QStringList{"A1=A", "C1=C", "A2=1", "B2=3"} << QStringList() << "AB";
    QTest::newRow("hidden leaf in a band: the band still spans it")
        << "G,A<G,~B<G,C" << false << Rows{{1, 2, 3}}
        << QStringList{"A1=G", "A2=A", "C2=C", "A3=1", "B3=3"} << QStringList{"A1:B1"} << "AB";
    QTest::newRow("grouped: the group field is a hidden leaf at the far right")
        << "A,G,B<G" << true << Rows{{1, 2, QStringLiteral("银行")}}
        << QStringList{"A2=A", "B1=G", "B2=B", "A3=1", "B3=2"} << QStringList() << "AB";
    QTest::newRow("cross: a band per period over the same values")
        << "S,P1,V1<P1,W1<P1,P2,V2<P2,W2<P2,T" << false << Rows{{QStringLiteral("s"), 1, 2, 3, 4, 10}}
        << QStringList{"A2=S", "B1=P1", "B2=V1", "C2=W1", "D1=P2", "D2=V2", "E2=W2", "F2=T",
                       "A3=s", "B3=1", "C3=2", "D3=3", "E3=4", "F3=10"}
        << QStringList{"B1:C1", "D1:E1"} << "ABCDEF";
    QTest::newRow("rows shorter than the header, and an empty row")
        << "A,G,B<G,C<G" << false << Rows{{1}, {}, {1, 2, 3}}
        << QStringList{"A2=A", "B1=G", "B2=B", "C2=C", "A3=1", "A5=1", "B5=2", "C5=3"}
        << QStringList{"B1:C1"} << "ABC";
    QStringList wide;
    QVariantList wideRow;
    for (int col = 1; col <= 110; ++col)
        wide.append(QStringLiteral("F%1").arg((wideRow << col).size()));
    QTest::newRow("110 columns: letters beyond CZ") << wide.join(',') << false << Rows{wideRow}
        << QStringList{"A1=F1", "A2=1", "CZ1=F104", "CZ2=104", "DF1=F110", "DF2=110"} << QStringList() << QString();
    QTest::newRow("no columns at all") << "" << false << Rows{{7}} << QStringList{"A1=7"} << QStringList() << "A";
}

void tst_TFExcelWritter::table()
{
    QFETCH(QString, layout);
    QFETCH(bool, grouped);
    QFETCH(Rows, rows);
    QFETCH(QStringList, cells);
    QFETCH(QStringList, merges);
    QFETCH(QString, widths);

    const std::unique_ptr<TFTreeStruct> tree = header(layout, grouped);
    const QString path = write(tree.get(), rows);
    QVERIFY(!path.isEmpty());
    const WorkbookReader sheet(path);
    QVERIFY2(sheet.ok(), qPrintable(sheet.error));
    // Every cell there is; of the wide table, some of its 220.
    QStringList got;
    for (const QString &cell : qAsConst(cells))
        got.append(cell.section('=', 0, 0) + '=' + sheet.text(cell.section('=', 0, 0)));
    QCOMPARE(got, cells);
    QCOMPARE(sheet.cells.size(), widths.isEmpty() ? 220 : cells.size());
    QCOMPARE(sheet.merges, merges);
    QCOMPARE(sheet.widths.size(), widths.isEmpty() ? 110 : widths.size());
    for (const QString &column : sheet.widths.keys())
        QVERIFY((widths.isEmpty() || widths.contains(column)) && qAbs(sheet.widths.value(column).toDouble() - 25.0) < 1.0);
    // The header is bold and centred, the data centred but not bold.
    const int headerRows = tree->depth() - 1;
    for (auto it = sheet.cells.constBegin(); it != sheet.cells.constEnd(); ++it) {
        const QJsonObject cell = it.value().toObject();
        const int row = it.key().mid(it.key().indexOf(QRegularExpression(QStringLiteral("\\d")))).toInt();
        QCOMPARE(cell.value(QLatin1String("bold")).toBool(), row <= headerRows);
        QCOMPARE(cell.value(QLatin1String("horizontal")).toString(), QStringLiteral("center"));
        QCOMPARE(cell.value(QLatin1String("vertical")).toString(), QStringLiteral("center"));
    }
}

// One row of values: each cell's text as read back and its number format.
void tst_TFExcelWritter::values_data()
{
    const QString asDouble = QStringLiteral("#,##0.00######;-#,##0.00######");
    const QString asInt = QStringLiteral("#,##0;-#,##0");
    const QString asDate = QStringLiteral("yyyy-MM-dd");

    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QStringList>("formats");

    QTest::newRow("each type sets its own")
        << QVariantList{1234.5, 7, QDate(2024, 1, 2), QDateTime(QDate(2024, 3, 4), QTime(5, 6, 7))}
        << QStringList{"1234.5", "7", "2024-01-02T00:00:00", "2024-03-04T05:06:07"}
        << QStringList{asDouble, asInt, asDate, asDate};
    QTest::newRow("a 64-bit integer keeps the format of the cell before it")
        << QVariantList{qlonglong(1), 2.25, qlonglong(3), 4, qlonglong(5)}
        << QStringList{"1", "2.25", "3", "4", "5"}
        << QStringList{"General", asDouble, asDouble, asInt, asInt};
    QTest::newRow("texts, booleans and unsigned numbers carry it too")
        << QVariantList{0.5, QStringLiteral("t"), true, 9u, 1}
        << QStringList{"0.5", "t", "true", "9", "1"}
        << QStringList{asDouble, asDouble, asDouble, asDouble, asInt};
    QTest::newRow("one blank from an empty cell is a text")
        << QVariantList{QStringLiteral(" "), 1.0} << QStringList{" ", "1"} << QStringList{"General", asDouble};
    // Texts are cleaned of what a cell should not hold.
    const QStringList text { "General" };
    QTest::newRow("CR LF removed") << QVariantList { "a\r\nb\r\nc" } << QStringList { "abc" } << text;
    QTest::newRow("CR CR removed") << QVariantList { "a\r\rb" } << QStringList { "ab" } << text;
    QTest::newRow("backslash u removed") << QVariantList { "x\\u4e2dy" } << QStringList { "x4e2dy" } << text;
    QTest::newRow("line feed kept") << QVariantList { "a\nb" } << QStringList { "a\nb" } << text;
    QTest::newRow("control characters dropped")
        << QVariantList { QString::fromUtf8("a\x01\x1f" "b\x7f") } << QStringList { QString::fromUtf8("ab\x7f") } << text;
    QTest::newRow("a formula stays a text") << QVariantList { "=1+1" } << QStringList { "=1+1" } << text;
    QTest::newRow("Chinese") << QVariantList { "股票代码" } << QStringList { "股票代码" } << text;
    QTest::newRow("cut to what a cell holds")
        << QVariantList { QString(40000, 'x') } << QStringList { QString(32767, 'x') } << text;
    QTest::newRow("values of unexpected types: their text, or nothing")
        << QVariantList{QVariant(QVariantList{1, 2}), QUrl(QStringLiteral("http://a/b")), QByteArray("raw"),
                        QVariant(), QVariant(QVariant::Double), std::nan(""), 2}
        << QStringList{"", "http://a/b", "raw", "", "", "nan", "2"}
        << QStringList{"General", "General", "General", "General", "General", asDouble, asInt};
}

void tst_TFExcelWritter::values()
{
    QFETCH(QVariantList, values);
    QFETCH(QStringList, texts);
    QFETCH(QStringList, formats);

    QStringList layout;
    for (int i = 0; i < values.size(); ++i)
        layout.append(QStringLiteral("F%1").arg(i));
    const std::unique_ptr<TFTreeStruct> tree = header(layout.join(QLatin1Char(',')));
    const QString path = write(tree.get(), Rows{values});
    QVERIFY(!path.isEmpty());
    const WorkbookReader sheet(path);
    QVERIFY2(sheet.ok(), qPrintable(sheet.error));
    for (int i = 0; i < values.size(); ++i) {
        const QString cell = TFExcelWritter::cellName(2, i + 1);
        QVERIFY2(sheet.text(cell) == texts.at(i), qPrintable(cell + QLatin1Char(' ') + sheet.text(cell)));
        if (!texts.at(i).isEmpty())
            QVERIFY2(sheet.format(cell) == formats.at(i), qPrintable(cell + QLatin1Char(' ') + sheet.format(cell)));
    }
}

// An older workbook of the same name stays as it was when a writing fails.
void tst_TFExcelWritter::nothingHalfWritten_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("cancelled while writing rows") << "cancel";
    QTest::newRow("dropped before saving") << "drop";
    QTest::newRow("more columns than a sheet has") << "wide";
    QTest::newRow("name is a folder") << "folder-name";
}

void tst_TFExcelWritter::nothingHalfWritten()
{
    QFETCH(QString, how);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("out.xlsx"));
    QFile old(path);
    QVERIFY(how == "folder-name" ? QDir(dir.path()).mkdir("out.xlsx") : old.open(QIODevice::WriteOnly) && old.write("older"));
    old.close();
    const std::unique_ptr<TFTreeStruct> tree = header(QStringLiteral("A,B"));
    const Rows rows = how == "wide" ? Rows{QVector<QVariant>(16385, 1).toList()}
                                    : QVector<QVariantList>(5000, {1, QStringLiteral("b")}).toList();
    {
        TFXlsxDocument doc(path);
        QVERIFY(TFExcelWritter::writeHeader(doc, tree.get()));
        int calls = 0;
        QCOMPARE(TFExcelWritter::writeData(doc, tree.get(), rows, [&](int written, int total) {
                     ++calls;
                     return how != "cancel" || written < total / 2;
                 }), how == "drop" || how == "folder-name");
        QVERIFY(how != "cancel" || calls > 1);
        QVERIFY(how != "folder-name" || (!doc.save() && !doc.errorString().isEmpty()));
    }
    QCOMPARE(QDir(dir.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList{"out.xlsx"});
    QVERIFY(how == "folder-name" || (old.open(QIODevice::ReadOnly) && old.readAll() == "older"));
}

QTEST_GUILESS_MAIN(tst_TFExcelWritter)
#include "tst_tfexcelwritter.moc"
