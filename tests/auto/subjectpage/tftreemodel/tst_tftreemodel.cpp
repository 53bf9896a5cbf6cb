#include "tftreemodel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QSignalSpy>
#include <QSortFilterProxyModel>
#include <QtTest>

namespace {

QJsonValue rows(const char *json)
{
    return QJsonDocument::fromJson(json).array();
}

// The tree as text: "caption(child,child)" for each top-level row, joined by ",".
QString shape(const QAbstractItemModel &model, const QModelIndex &parent = QModelIndex())
{
    QStringList parts;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        QString part = index.data().toString();
        if (model.rowCount(index) > 0)
            part += QLatin1Char('(') + shape(model, index) + QLatin1Char(')');
        parts << part;
    }
    return parts.join(QLatin1Char(','));
}

QModelIndex findCode(const QAbstractItemModel &model, qlonglong code)
{
    return model.match(model.index(0, 0), TFTreeItem::CodeRole, code, 1, Qt::MatchRecursive).value(0);
}

} // namespace

class tst_TFSubjectTreeModel : public QObject
{
    Q_OBJECT
private slots:
    void build_data();
    void build();
    void nodeValues();
    void headerAndFlags();
    void checksSpreadToChildren();
};

void tst_TFSubjectTreeModel::build_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<int>("rootCode");
    QTest::addColumn<bool>("checkable");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QString>("expected");

    QTest::newRow("empty array") << QByteArray("[]") << 2 << false << false << QString();
    QTest::newRow("not an array") << QByteArray("{\"NODE_CODE\":3}") << 2 << false << false << QString();
    QTest::newRow("array order kept")
        << QByteArray("[{\"NODE_CODE\":3,\"P_NODE_CODE\":2,\"NODE_CAP\":\"b\"},{\"NODE_CODE\":4,\"P_NODE_CODE\":2,\"NODE_CAP\":\"a\"}]")
        << 2 << false << true << "b,a";
    QTest::newRow("child before parent")
        << QByteArray("[{\"NODE_CODE\":5,\"P_NODE_CODE\":3,\"NODE_CAP\":\"leaf\"},{\"NODE_CODE\":3,\"P_NODE_CODE\":2,\"NODE_CAP\":\"folder\"}]")
        << 2 << false << true << "folder(leaf)";
    QTest::newRow("row with the root code dropped")
        << QByteArray("[{\"NODE_CODE\":2,\"P_NODE_CODE\":0,\"NODE_CAP\":\"root\"},{\"NODE_CODE\":3,\"P_NODE_CODE\":2,\"NODE_CAP\":\"x\"}]")
        << 2 << false << true << "x";
    QTest::newRow("orphan left out")
        << QByteArray("[{\"NODE_CODE\":3,\"P_NODE_CODE\":2,\"NODE_CAP\":\"x\"},{\"NODE_CODE\":9,\"P_NODE_CODE\":77,\"NODE_CAP\":\"lost\"},{\"NODE_CODE\":10,\"P_NODE_CODE\":9,\"NODE_CAP\":\"under lost\"}]")
        << 2 << false << true << "x";
    QTest::newRow("same code twice: children go to the first")
        << QByteArray("[{\"NODE_CODE\":3,\"P_NODE_CODE\":2,\"NODE_CAP\":\"first\"},{\"NODE_CODE\":3,\"P_NODE_CODE\":2,\"NODE_CAP\":\"second\"},{\"NODE_CODE\":4,\"P_NODE_CODE\":3,\"NODE_CAP\":\"kid\"}]")
        << 2 << false << true << "first(kid),second";
    QTest::newRow("non-objects passed over")
        << QByteArray("[1,\"x\",null,{\"NODE_CODE\":3,\"P_NODE_CODE\":2,\"NODE_CAP\":\"x\"}]") << 2 << false << true << "x";
    QTest::newRow("rows naming each other as parent")
        << QByteArray("[{\"NODE_CODE\":3,\"P_NODE_CODE\":4,\"NODE_CAP\":\"a\"},{\"NODE_CODE\":4,\"P_NODE_CODE\":3,\"NODE_CAP\":\"b\"},{\"NODE_CODE\":5,\"P_NODE_CODE\":2,\"NODE_CAP\":\"c\"}]")
        << 2 << false << true << "c";
    QTest::newRow("own code as parent: under the next row with that code")
        << QByteArray("[{\"NODE_CODE\":3,\"P_NODE_CODE\":2,\"NODE_CAP\":\"first\"},{\"NODE_CODE\":3,\"P_NODE_CODE\":3,\"NODE_CAP\":\"second\"},{\"NODE_CODE\":7,\"P_NODE_CODE\":7,\"NODE_CAP\":\"alone\"}]")
        << 2 << false << true << "first(second)";
    QTest::newRow("rows under a ring left out")
        << QByteArray("[{\"NODE_CODE\":5,\"P_NODE_CODE\":3,\"NODE_CAP\":\"tail\"},{\"NODE_CODE\":3,\"P_NODE_CODE\":4,\"NODE_CAP\":\"a\"},{\"NODE_CODE\":4,\"P_NODE_CODE\":3,\"NODE_CAP\":\"b\"},{\"NODE_CODE\":6,\"P_NODE_CODE\":2,\"NODE_CAP\":\"c\"},{\"NODE_CODE\":8,\"P_NODE_CODE\":6,\"NODE_CAP\":\"d\"}]")
        << 2 << false << true << "c(d)";
    QTest::newRow("block tree ignores the root code passed in")
        << QByteArray("[{\"SECT_ID\":11,\"P_SECT_ID\":0,\"SECT_NAME\":\"银行\"},{\"SECT_ID\":12,\"P_SECT_ID\":11,\"SECT_NAME\":\"国有\"},{\"SECT_ID\":13,\"P_SECT_ID\":2,\"SECT_NAME\":\"under two\"}]")
        << 2 << true << true << "银行(国有)";
    QTest::newRow("block tree reads SECT keys only")
        << QByteArray("[{\"NODE_CODE\":3,\"P_NODE_CODE\":0,\"NODE_CAP\":\"main row\"}]") << 0 << true << true << QString();
}

void tst_TFSubjectTreeModel::build()
{
    QFETCH(QByteArray, json);
    QFETCH(int, rootCode);
    QFETCH(bool, checkable);
    QFETCH(bool, result);
    QFETCH(QString, expected);

    TFSubjectTreeModel model;
    QCOMPARE(model.build(rows(json), rootCode, checkable), result);
    QCOMPARE(shape(model), expected);
    QCOMPARE(model.rootItem()->code(), qlonglong(checkable ? 0 : rootCode));
    QCOMPARE(model.columnCount(), 1);
}

void tst_TFSubjectTreeModel::nodeValues()
{
    TFSubjectTreeModel model;
    const char *json = "[{\"NODE_CODE\":\"12\",\"P_NODE_CODE\":2,\"NODE_CAP\":\"行情\",\"NODE_TYP\":\"1\",\"LEVEL\":1,\n"
"                            \"OBJ_VW_ID\":260,\"NODE_URL\":\"http://x\"},{\"NODE_CODE\":13,\"P_NODE_CODE\":12}]";
    QVERIFY(model.build(rows(json), 2, false));
    const QModelIndex index = model.index(0, 0);
    QCOMPARE(index.data(TFTreeItem::CodeRole).toLongLong(), 12); // a code sent as text
    QCOMPARE(index.data(TFTreeItem::ParentCodeRole).toLongLong(), 2);
    QCOMPARE(index.data(TFTreeItem::NodeTypeRole).toLongLong(), 1);
    QCOMPARE(index.data(TFTreeItem::LevelRole).toLongLong(), 1);
    QCOMPARE(index.data(TFTreeItem::ViewIdRole).toLongLong(), 260);
    QCOMPARE(index.data(TFTreeItem::UrlRole).toString(), QStringLiteral("http://x"));
    const QModelIndex bare = model.index(0, 0, index);
    QCOMPARE(bare.data().toString(), QString());
    QCOMPARE(bare.data(TFTreeItem::LevelRole).toLongLong(), 0);
    QCOMPARE(bare.data(TFTreeItem::UrlRole).toString(), QString());
    QCOMPARE(model.parent(bare), index);
    QVERIFY(!model.parent(index).isValid());
    QCOMPARE(model.rowCount(model.index(0, 0).sibling(0, 0)), 1);
    QVERIFY(!model.data(QModelIndex()).isValid());
}

void tst_TFSubjectTreeModel::headerAndFlags()
{
    TFSubjectTreeModel mainTree;
    mainTree.build(rows("[{\"NODE_CODE\":3,\"P_NODE_CODE\":2,\"NODE_CAP\":\"x\"}]"), 2, false);
    QCOMPARE(mainTree.headerData(TFTreeItem::CodeRole, Qt::Horizontal).toLongLong(), 2);
    QVERIFY(!mainTree.headerData(0, Qt::Vertical).isValid());
    const QModelIndex index = mainTree.index(0, 0);
    QVERIFY(!(mainTree.flags(index) & Qt::ItemIsUserCheckable));
    QVERIFY(!mainTree.data(index, Qt::CheckStateRole).isValid());
    QCOMPARE(mainTree.flags(QModelIndex()), Qt::NoItemFlags);

    TFSubjectTreeModel block;
    block.build(rows("[{\"SECT_ID\":3,\"P_SECT_ID\":0,\"SECT_NAME\":\"x\"}]"), 0, true);
    QCOMPARE(block.flags(block.index(0, 0)),
             Qt::ItemIsUserCheckable | Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    QCOMPARE(block.data(block.index(0, 0), Qt::CheckStateRole).toInt(), int(Qt::Unchecked));
}

void tst_TFSubjectTreeModel::checksSpreadToChildren()
{
    TFSubjectTreeModel model;
    model.build(rows("[{\"SECT_ID\":1,\"P_SECT_ID\":0,\"SECT_NAME\":\"p\"},\n"
"                          {\"SECT_ID\":2,\"P_SECT_ID\":1,\"SECT_NAME\":\"a\"},\n"
"                          {\"SECT_ID\":3,\"P_SECT_ID\":1,\"SECT_NAME\":\"b\"},\n"
"                          {\"SECT_ID\":4,\"P_SECT_ID\":1,\"SECT_NAME\":\"c\"},\n"
"                          {\"SECT_ID\":5,\"P_SECT_ID\":0,\"SECT_NAME\":\"other\"}]"),
                0, true);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    const QModelIndex parent = findCode(model, 1);
    // The base class's answer comes back, even when checks changed.
    QCOMPARE(model.setData(parent, Qt::Checked, Qt::CheckStateRole), false);
    QCOMPARE(changed.count(), 4);
    QVariantList codes = model.checkedCodes();
    std::sort(codes.begin(), codes.end(), [](const QVariant &a, const QVariant &b) { return a.toInt() < b.toInt(); });
    QCOMPARE(codes, QVariantList({1, 2, 3, 4}));

    model.setData(findCode(model, 3), Qt::Unchecked, Qt::CheckStateRole);
    QCOMPARE(model.data(parent, Qt::CheckStateRole).toInt(), int(Qt::Checked));
    QCOMPARE(model.checkedCodes().size(), 3);

    changed.clear();
    model.setData(parent, Qt::PartiallyChecked, Qt::CheckStateRole);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(model.checkedCodes().size(), 3);

    model.clearChecks();
    QVERIFY(model.checkedCodes().isEmpty());

    // A main tree takes no checks.
    TFSubjectTreeModel mainTree;
    mainTree.build(rows("[{\"NODE_CODE\":3,\"P_NODE_CODE\":2,\"NODE_CAP\":\"x\"}]"), 2, false);
    QVERIFY(!mainTree.setData(mainTree.index(0, 0), Qt::Checked, Qt::CheckStateRole));
    QVERIFY(mainTree.checkedCodes().isEmpty());
}

QTEST_MAIN(tst_TFSubjectTreeModel)
#include "tst_tftreemodel.moc"
