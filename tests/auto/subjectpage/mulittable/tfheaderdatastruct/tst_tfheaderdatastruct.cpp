#include "mulittable/tfheaderdatastruct.h"

#include <QtTest>

namespace {

HeaderFieldInfo field(const QString& name, const QString& owner = QString(), bool visible = true)
{
    HeaderFieldInfo info;
    info.fieldName = name;
    info.caption = name;
    info.ownerBand = owner;
    info.visible = visible;
    return info;
}

HeaderFieldInfo unitField(const QString& name, const QString& owner, const QString& columnType,
                          const QString& unit, int category, int captionShowType)
{
    HeaderFieldInfo info = field(name, owner);
    info.columnType = columnType;
    info.showUnit = unit;
    info.unitCategory = category;
    info.captionShowType = captionShowType;
    return info;
}

QStringList fieldNames(const QList<TFTreeStruct*>& nodes)
{
    QStringList names;
    for (const TFTreeStruct* node : nodes)
        names << node->info().fieldName;
    return names;
}

// A tree as "BAND[...]" for a band, the name for a leaf.
QString nodes(const QList<TFTreeStruct*>& list)
{
    QStringList texts;
    for (const TFTreeStruct* node : list)
        texts << (node->hasChildren() ? node->info().fieldName + '[' + nodes(node->children()) + ']' : node->info().fieldName);
    return texts.join(' ');
}

} // namespace

class tst_TFHeaderDataStruct : public QObject
{
    Q_OBJECT
private slots:
    void trees_data();
    void trees();
    void bandOverridesLeaves_data();
    void bandOverridesLeaves();
    void updateUnit_data();
    void updateUnit();
    void unitsThroughTheTree();
    void leavesCacheBuiltBottomUp();
    void showBands();
};

void tst_TFHeaderDataStruct::trees_data()
{
    QTest::addColumn<QString>("fields");      // "NAME/OWNER", a leading "-" hides the record
    QTest::addColumn<QString>("groupField");  // grouped by it when not empty
    QTest::addColumn<QString>("tree");        // depth; nodes; level one; hidden leaf indexes

    QTest::newRow("nothing: the root alone") << "" << "" << "1; ; ; ";
    QTest::newRow("flat three") << "A B C" << "" << "2; A B C; A B C; ";
    QTest::newRow("owner band 0 is top level") << "A/0 B" << "" << "2; A B; A B; ";
    QTest::newRow("bands two deep") << "B1 B2/B1 X/B2 Y/B1 Z" << "" << "4; B1[B2[X] Y] Z; B1 Z; ";
    QTest::newRow("columns before their band") << "X/B B Y/B" << "" << "3; B[X Y]; B; ";
    QTest::newRow("band without columns is a leaf") << "B A" << "" << "2; B A; B A; ";
    QTest::newRow("unknown owner has no column") << "A Q/nowhere" << "" << "2; A; A; ";
    // A hidden band takes its columns along; the group leaf is hidden, at
    // the far right, and is the one hidden index.
    QTest::newRow("hidden records, grouped") << "A -HB C1/HB -H D" << "INDU" << "2; A D INDU; A D INDU; 2";
    QTest::newRow("hidden records, not grouped") << "A -HB C1/HB -H D" << "" << "2; A D; A D; ";
    QTest::newRow("nothing visible") << "-H" << "" << "1; ; ; ";
    // Names of bands that repeat, or that name themselves, still give a
    // tree: a column hangs under the first band of its name only.
    QTest::newRow("bands named twice or by themselves") << "B X/B B S/S L1/L2 L2/L1" << "" << "3; B[X] B; B B; ";
}

void tst_TFHeaderDataStruct::trees()
{
    QFETCH(QString, fields);
    QFETCH(QString, groupField);
    QFETCH(QString, tree);

    QList<HeaderFieldInfo> records;
    for (QString entry : fields.split(' ', Qt::SkipEmptyParts)) {
        const bool hidden = entry.startsWith('-');
        entry.remove(0, hidden ? 1 : 0);
        records << field(entry.section('/', 0, 0), entry.section('/', 1), !hidden);
    }
    // Built over a tree of before, whose nodes and leaves go.
    TFTreeStruct root(QString{});
    buildHeaderTree(&root, { field("BEFORE") }, false, QString());
    QCOMPARE(root.leaves().size(), 1);
    buildHeaderTree(&root, records, !groupField.isEmpty(), groupField);
    QStringList hidden;
    for (int index : root.hiddenLeafIndexes())
        hidden << QString::number(index);
    QCOMPARE(QStringLiteral("%1; %2; %3; %4").arg(root.depth()).arg(nodes(root.children()))
                 .arg(fieldNames(root.nodesAtLevel(1)).join(' '), hidden.join(',')), tree);
    QCOMPARE(root.leafCaptions(), fieldNames(root.leaves()));
    for (const TFTreeStruct* leaf : root.leaves())
        QVERIFY(leaf->parent()->children().contains(const_cast<TFTreeStruct*>(leaf)));
    if (!groupField.isEmpty()) {
        QCOMPARE(root.leaves().last()->info().level, 1);
        QVERIFY(root.leaves().last()->info().ownerBand.isEmpty());
    }
}

void tst_TFHeaderDataStruct::bandOverridesLeaves_data()
{
    QTest::addColumn<qint64>("bandShow");
    QTest::addColumn<int>("bandCategory");
    QTest::addColumn<qint64>("expectedShow");
    QTest::addColumn<qint64>("expectedPrev");
    QTest::addColumn<int>("expectedCategory");

    QTest::newRow("band with factors") << qint64(10000) << 1 << qint64(10000) << qint64(100) << 1;
    QTest::newRow("band with factor 0") << qint64(0) << 1 << qint64(1) << qint64(1) << 2;
    QTest::newRow("band without category") << qint64(10000) << 0 << qint64(1) << qint64(1) << 2;
}

void tst_TFHeaderDataStruct::bandOverridesLeaves()
{
    QFETCH(qint64, bandShow);
    QFETCH(int, bandCategory);
    QFETCH(qint64, expectedShow);
    QFETCH(qint64, expectedPrev);
    QFETCH(int, expectedCategory);

    HeaderFieldInfo band = field("B");
    band.columnType = QStringLiteral("Band");
    band.showUnitFactor = bandShow;
    band.prevUnitFactor = 100;
    band.unitCategory = bandCategory;
    HeaderFieldInfo mid = field("M", "B");
    HeaderFieldInfo leaf = field("X", "M");
    leaf.showUnitFactor = 1;
    leaf.prevUnitFactor = 1;
    leaf.unitCategory = 2;
    mid.showUnitFactor = 1;
    mid.prevUnitFactor = 1;
    mid.unitCategory = 2;

    TFTreeStruct root(QString{});
    buildHeaderTree(&root, { band, mid, leaf }, false, QString());
    const TFTreeStruct* x = root.leaves().first();
    QCOMPARE(x->info().showUnitFactor, expectedShow);
    QCOMPARE(x->info().prevUnitFactor, expectedPrev);
    QCOMPARE(x->info().unitCategory, expectedCategory);
}

void tst_TFHeaderDataStruct::updateUnit_data()
{
    QTest::addColumn<QString>("columnType");
    QTest::addColumn<QString>("showUnit");
    QTest::addColumn<int>("captionShowType");
    QTest::addColumn<int>("category");
    QTest::addColumn<QString>("initial");
    QTest::addColumn<QString>("afterYi");

    QTest::newRow("unit column, type 1") << "BandedGridColumnWithUnit" << "元" << 1 << 1 << "X(元)" << "X(亿元)";
    QTest::newRow("band, type 3, any case") << "band" << "元" << 3 << 1 << "X(元)" << "X(亿元)";
    QTest::newRow("type 2 shows no unit") << "BandedGridColumnWithUnit" << "元" << 2 << 1 << "X" << "X";
    QTest::newRow("empty unit text") << "BandedGridColumnWithUnit" << "" << 1 << 1 << "X" << "X";
    QTest::newRow("other category") << "BandedGridColumnWithUnit" << "股" << 1 << 2 << "X(股)" << "X(股)";
    QTest::newRow("plain column") << "HyperLinkEdit" << "元" << 1 << 1 << "X" << "X";
}

void tst_TFHeaderDataStruct::updateUnit()
{
    QFETCH(QString, columnType);
    QFETCH(QString, showUnit);
    QFETCH(int, captionShowType);
    QFETCH(int, category);
    QFETCH(QString, initial);
    QFETCH(QString, afterYi);

    TFTreeStruct root(QString{});
    buildHeaderTree(&root, { unitField("X", QString(), columnType, showUnit, category, captionShowType) },
                    false, QString());
    const TFTreeStruct* x = root.leaves().first();
    QCOMPARE(x->displayCaption(), initial);
    root.updateUnit(QStringLiteral("亿元"), 1);
    QCOMPARE(x->displayCaption(), afterYi);
    QCOMPARE(x->info().caption, QStringLiteral("X"));
}

void tst_TFHeaderDataStruct::unitsThroughTheTree()
{
    TFTreeStruct root(QString{});
    buildHeaderTree(&root,
                    { unitField("B", QString(), "Band", "元", 1, 1), field("X", "B"),
                      unitField("Y", "B", "BandedGridColumnWithUnit", "万股", 2, 1),
                      unitField("Z", "B", "BandedGridColumnWithUnit", "元", 1, 3) },
                    false, QString());
    QCOMPARE(root.findField("Y")->info().showUnit, QStringLiteral("万股"));
    QVERIFY(!root.findField("nothing"));
    QCOMPARE(root.firstUnit(), QStringLiteral("元"));   // the band's own, before its columns'
    QCOMPARE(root.findField("Y")->firstUnit(), QStringLiteral("万股"));
    QCOMPARE(root.findField("X")->firstUnit(), QString());
    // A second change of unit replaces the first, never stacks on it.
    root.updateUnit(QStringLiteral("万元"), 1);
    root.updateUnit(QStringLiteral("亿元"), 1);
    QCOMPARE(root.children().first()->displayCaption(), QStringLiteral("B(亿元)"));
    QCOMPARE(root.leafCaptions(), (QStringList{ "X", "Y(万股)", "Z(亿元)" }));
    QCOMPARE(root.firstUnit(), QStringLiteral("亿元"));
}

void tst_TFHeaderDataStruct::leavesCacheBuiltBottomUp()
{
    // The cache is emptied by addChild on the same node only: a grandchild
    // added after the first look stays unseen from above.
    TFTreeStruct root(QString{});
    auto* band = new TFTreeStruct(field("B"));
    band->addChild(new TFTreeStruct(field("X", "B")));
    root.addChild(band);
    QCOMPARE(fieldNames(root.leaves()), QStringList{ "X" });
    band->addChild(new TFTreeStruct(field("Y", "B")));
    QCOMPARE(fieldNames(band->leaves()), (QStringList{ "X", "Y" }));
    QCOMPARE(fieldNames(root.leaves()), QStringList{ "X" });
    root.addChild(new TFTreeStruct(field("Z")));
    QCOMPARE(fieldNames(root.leaves()), (QStringList{ "X", "Y", "Z" }));
    QVERIFY(band->children().first()->leaves().isEmpty());
}

void tst_TFHeaderDataStruct::showBands()
{
    TFTreeStruct root(QString{});
    auto* band = new TFTreeStruct(field("B", QString(), false));
    band->addChild(new TFTreeStruct(field("X", "B", false)));
    root.addChild(band);
    root.addChild(new TFTreeStruct(field("Y", QString(), false)));
    root.showBands();
    QVERIFY(band->info().visible);
    QVERIFY(!band->children().first()->info().visible);
    QVERIFY(!root.children().last()->info().visible);
}

QTEST_APPLESS_MAIN(tst_TFHeaderDataStruct)
#include "tst_tfheaderdatastruct.moc"
