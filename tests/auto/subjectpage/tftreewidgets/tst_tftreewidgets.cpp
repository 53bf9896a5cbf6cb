#include "tfrowdelegate.h"
#include "tfsearchwidget.h"
#include "tfsubjecttreewidget.h"
#include "tftreefilterproxymodel.h"
#include "tftreemodel.h"
#include "tftreewidgetcontainer.h"

#include <QAction>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTreeView>
#include <QtTest>

Q_DECLARE_METATYPE(QStandardItem *)

namespace {

// Topic 2: two groups at level 1, leaves below; one leaf is a web page.
const char *kNavigation = "[\n"
" {\"NODE_CODE\":10,\"P_NODE_CODE\":2,\"NODE_CAP\":\"行情中心\",\"LEVEL\":1},\n"
" {\"NODE_CODE\":11,\"P_NODE_CODE\":10,\"NODE_CAP\":\"沪深A股行情\",\"LEVEL\":2,\"OBJ_VW_ID\":260},\n"
" {\"NODE_CODE\":12,\"P_NODE_CODE\":10,\"NODE_CAP\":\"abb\",\"LEVEL\":2,\"OBJ_VW_ID\":269},\n"
" {\"NODE_CODE\":20,\"P_NODE_CODE\":2,\"NODE_CAP\":\"财务\",\"LEVEL\":1},\n"
" {\"NODE_CODE\":21,\"P_NODE_CODE\":20,\"NODE_CAP\":\"分析\",\"LEVEL\":2},\n"
" {\"NODE_CODE\":22,\"P_NODE_CODE\":21,\"NODE_CAP\":\"利润\",\"LEVEL\":3,\"OBJ_VW_ID\":265},\n"
" {\"NODE_CODE\":23,\"P_NODE_CODE\":20,\"NODE_CAP\":\"公告\",\"LEVEL\":2,\"NODE_URL\":\"http://127.0.0.1/notice\"},\n"
" {\"NODE_CODE\":30,\"P_NODE_CODE\":2,\"NODE_CAP\":\"单页\",\"LEVEL\":1,\"OBJ_VW_ID\":300}\n"
"]";

const char *kBlocks = "[\n"
" {\"SECT_ID\":1,\"P_SECT_ID\":0,\"SECT_NAME\":\"行业\"},\n"
" {\"SECT_ID\":5,\"P_SECT_ID\":1,\"SECT_NAME\":\"银行\"},\n"
" {\"SECT_ID\":6,\"P_SECT_ID\":1,\"SECT_NAME\":\"保险\"}\n"
"]";

QJsonValue rows(const char *json)
{
    return QJsonDocument::fromJson(json).array();
}

TFSubjectTreeModel *mainModel()
{
    auto *model = new TFSubjectTreeModel;
    model->build(rows(kNavigation), 2, false);
    return model;
}

QStringList visibleRows(const QAbstractItemModel *model, const QModelIndex &parent = QModelIndex())
{
    QStringList texts;
    for (int row = 0; row < model->rowCount(parent); ++row) {
        const QModelIndex index = model->index(row, 0, parent);
        texts << index.data().toString();
        texts << visibleRows(model, index);
    }
    return texts;
}

QModelIndex viewIndex(QTreeView *view, const QString &text)
{
    return view->model()->match(view->model()->index(0, 0), Qt::DisplayRole, text, 1,
                                Qt::MatchExactly | Qt::MatchRecursive).value(0);
}

} // namespace

class tst_TFTreeWidgets : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { qRegisterMetaType<QStandardItem *>(); }
    void proxyKeepsParentsOfHits_data();
    void proxyKeepsParentsOfHits();
    void searchOpensFirstLeaf();
    void click_data();
    void click();
    void load_data();
    void load();
    void expandingATopGroupOpensItAll();
    void blockTree();
    void leafMarker();
};

void tst_TFTreeWidgets::proxyKeepsParentsOfHits_data()
{
    QTest::addColumn<QString>("search");
    QTest::addColumn<QStringList>("visible");

    QTest::newRow("empty text keeps all")
        << QString() << QStringList{"行情中心", "沪深A股行情", "abb", "财务", "分析", "利润", "公告", "单页"};
    QTest::newRow("leaf keeps its folder") << "利润" << QStringList{"财务", "分析", "利润"};
    QTest::newRow("last character may repeat") << "ab" << QStringList{"行情中心", "abb"};
    QTest::newRow("case ignored") << "ABB" << QStringList{"行情中心", "abb"};
    QTest::newRow("a folder's own match is not enough") << "财务" << QStringList();
    QTest::newRow("pattern characters act") << "深.股" << QStringList{"行情中心", "沪深A股行情"};
    QTest::newRow("a text that is no pattern filters all") << "(" << QStringList();
}

void tst_TFTreeWidgets::proxyKeepsParentsOfHits()
{
    QFETCH(QString, search);
    QFETCH(QStringList, visible);

    TFSubjectTreeWidget tree(false);
    tree.setModel(mainModel());
    tree.slotSearch(search);
    QCOMPARE(visibleRows(tree.treeView()->model()), visible);
}

void tst_TFTreeWidgets::searchOpensFirstLeaf()
{
    TFSubjectTreeWidget tree(false);
    tree.setModel(mainModel());
    QSignalSpy clicked(&tree, &TFSubjectTreeWidget::signalItemClicked);

    tree.searchWidget()->lineEdit()->setText(QStringLiteral("利"));
    tree.searchWidget()->searchAction()->trigger();
    QCOMPARE(clicked.count(), 1);
    QCOMPARE(clicked.at(0).at(0).value<QStandardItem *>()->text(), QStringLiteral("利润"));
    QCOMPARE(tree.treeView()->currentIndex().data().toString(), QStringLiteral("利润"));

    // An empty search clears the filter, collapses and opens the first leaf.
    tree.slotSearch(QString());
    QCOMPARE(clicked.count(), 2);
    QCOMPARE(clicked.at(1).at(0).value<QStandardItem *>()->text(), QStringLiteral("沪深A股行情"));
    QVERIFY(!tree.treeView()->isExpanded(viewIndex(tree.treeView(), QStringLiteral("财务"))));

    // Nothing left: nothing opens.
    tree.slotSearch(QStringLiteral("zzz"));
    QCOMPARE(clicked.count(), 2);
}

void tst_TFTreeWidgets::click_data()
{
    QTest::addColumn<QString>("node");
    QTest::addColumn<int>("opened");       // of two clicks
    QTest::addColumn<qlonglong>("lastId"); // -1: none
    QTest::addColumn<QString>("group");    // null: no signal
    QTest::newRow("a view opens once") << "沪深A股行情" << 1 << 260LL << "行情中心";
    QTest::newRow("another view of the group") << "abb" << 1 << 269LL << "行情中心";
    QTest::newRow("a deeper leaf finds the level-1 ancestor") << "利润" << 1 << 265LL << "财务";
    QTest::newRow("a web page opens every time") << "公告" << 2 << 0LL << "财务";
    QTest::newRow("a folder without a view opens nothing") << "财务" << 0 << -1LL << QString();
    QTest::newRow("a folder below level 1") << "分析" << 0 << -1LL << QString();
}

void tst_TFTreeWidgets::click()
{
    QFETCH(QString, node);
    QFETCH(int, opened);
    QFETCH(qlonglong, lastId);
    QFETCH(QString, group);
    TFTreeWidgetContainer container;
    container.loadMainTreeByCode(QStringLiteral("999"), rows(kNavigation), 2, QString());
    QSignalSpy opens(&container, &TFTreeWidgetContainer::signalItemClicked);
    QSignalSpy groups(&container, &TFTreeWidgetContainer::groupChanged);
    QTreeView *view = container.mainTreeView();
    // The load opened 沪深A股行情 already: begin from another view, a leaf
    // at level 1, which belongs to no group.
    container.mainTree()->slotItemClicked(viewIndex(view, QStringLiteral("单页")));
    QCOMPARE(opens.count(), 1);
    QCOMPARE(groups.count(), 0);
    opens.clear();
    const QModelIndex index = viewIndex(view, node);
    QVERIFY(index.isValid());
    emit view->clicked(index);
    emit view->clicked(index);
    QCOMPARE(opens.count(), opened);
    if (opened) {
        QCOMPARE(opens.at(0).at(0).toLongLong(), lastId);
        QCOMPARE(opens.at(0).at(1).toString(), node);
    }
    QCOMPARE(groups.count(), group.isNull() ? 0 : 2);
    if (!group.isNull())
        QCOMPARE(groups.at(0).at(0).toString(), group);
    // A further view shows what the last identifier was.
    opens.clear();
    container.mainTree()->slotItemClicked(viewIndex(view, QStringLiteral("单页")));
    QCOMPARE(opens.count(), lastId == -1 ? 0 : 1);
}

void tst_TFTreeWidgets::load_data()
{
    // A tree loaded by a node code, or by a menu record (name, view, sector)
    // and a text; then one view opens. Nothing selected: the load had no rows.
    QTest::addColumn<QString>("code");
    QTest::addColumn<QString>("itemName");
    QTest::addColumn<int>("viewId");
    QTest::addColumn<QString>("sectorName");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("selected");
    QTest::newRow("by code") << "22" << "" << 0 << "" << "" << "利润";
    QTest::newRow("by code, no rows: nothing opens") << "22" << "" << 0 << "" << "" << "";
    QTest::newRow("item with its view") << "" << "abb" << 269 << "行情中心" << "" << "abb";
    QTest::newRow("item name with another view: the sector, then its first leaf")
        << "" << "abb" << 1 << "财务" << "" << "利润";
    QTest::newRow("the text names a child below the sector") << "" << "x" << 0 << "财务" << "公告" << "公告";
    QTest::newRow("nothing found: first leaf of the tree") << "" << "x" << 0 << "y" << "" << "沪深A股行情";
}

void tst_TFTreeWidgets::load()
{
    QFETCH(QString, code);
    QFETCH(QString, text);
    QFETCH(QString, selected);
    TFTreeWidgetContainer container;
    QSignalSpy opens(&container, &TFTreeWidgetContainer::signalItemClicked);
    const QJsonValue navigation = rows(selected.isEmpty() ? "[]" : kNavigation);
    TFMenuCfg::MenuItem record;
    QFETCH(QString, itemName);
    QFETCH(int, viewId);
    QFETCH(QString, sectorName);
    record.itemName = itemName;
    record.obj_vw_id = viewId;
    record.sectorName = sectorName;
    QCOMPARE(code.isEmpty() ? container.loadMainTreeByName(record, navigation, 2, text)
                            : container.loadMainTreeByCode(code, navigation, 2, text),
             !selected.isEmpty());
    QCOMPARE(container.mainTreeView()->currentIndex().data().toString(), selected);
    QCOMPARE(opens.count(), selected.isEmpty() ? 0 : 1);
    if (!selected.isEmpty())
        QCOMPARE(opens.at(0).at(1).toString(), selected);
    QCOMPARE(container.mainTreeModel()->rowCount() > 0, !selected.isEmpty());
}

void tst_TFTreeWidgets::expandingATopGroupOpensItAll()
{
    TFSubjectTreeWidget tree(false);
    tree.setModel(mainModel());
    QTreeView *view = tree.treeView();
    const QModelIndex finance = viewIndex(view, QStringLiteral("财务"));
    view->expand(finance);
    QVERIFY(view->isExpanded(viewIndex(view, QStringLiteral("分析"))));

    // Deeper levels open one step at a time.
    view->collapseAll();
    tree.slotExpanded(viewIndex(view, QStringLiteral("分析")));
    QVERIFY(!view->isExpanded(viewIndex(view, QStringLiteral("分析"))));
    tree.slotDoubleClicked(finance);
    QVERIFY(view->isExpanded(finance));
    QVERIFY(view->isExpanded(viewIndex(view, QStringLiteral("分析"))));
}

void tst_TFTreeWidgets::blockTree()
{
    // Without rows the block tree is never shown.
    TFTreeWidgetContainer container;
    QVERIFY(container.blockTree()->isHidden());
    QVERIFY(container.mainTreeView()->isHeaderHidden());
    QCOMPARE(container.blockFilter().first, QStringLiteral("filterBlock"));
    QCOMPARE(container.blockFilter().second.toJsonArray(), QJsonArray());
    container.loadBlockTree(QJsonValue());
    QVERIFY(!container.blockTree()->hasRows());
    container.setRootSector(QStringLiteral("行业"));
    container.slotSetSector(QStringLiteral("5"));
    QVERIFY(container.blockTree()->isHidden());

    container.loadBlockTree(rows(kBlocks));
    QVERIFY(container.blockTree()->hasRows());
    TFSubjectTreeModel *model = container.blockTreeModel();
    // A null value keeps the rows.
    container.loadBlockTree(QJsonValue());
    QCOMPARE(container.blockTreeModel(), model);

    // Found by caption without regard to case, or by code.
    container.slotSetSector(QStringLiteral("5"));
    QVERIFY(!container.blockTree()->isHidden());
    QCOMPARE(container.blockFilter().second.toJsonArray(), QJsonArray({5}));
    QVERIFY(!container.blockTreeView()->currentIndex().isValid());

    container.slotSetSector(QStringLiteral("行业"));
    QVariantList codes = container.blockTree()->checkedCodes();
    std::sort(codes.begin(), codes.end(), [](const QVariant &a, const QVariant &b) { return a.toInt() < b.toInt(); });
    QCOMPARE(codes, QVariantList({1, 5, 6}));

    container.setRootSector(QStringLiteral("1"));
    QCOMPARE(container.blockTreeView()->rootIndex().data().toString(), QStringLiteral("行业"));

    // Opening a view hides the block tree and drops its checks.
    container.loadMainTreeByCode(QStringLiteral("11"), rows(kNavigation), 2, QString());
    QVERIFY(container.blockTree()->isHidden());
    QVERIFY(container.blockTree()->checkedCodes().isEmpty());

    // An empty array replaces the rows with none.
    container.loadBlockTree(rows("[]"));
    QVERIFY(!container.blockTree()->hasRows());
}

void tst_TFTreeWidgets::leafMarker()
{
    TFSubjectTreeModel *model = mainModel();
    TFRowDelegate mainDelegate(false);
    TFRowDelegate blockDelegate(true);
    const QModelIndex folder = model->index(0, 0);
    const QModelIndex leaf = model->index(0, 0, folder);
    QCOMPARE(mainDelegate.markerFile(leaf, QStyle::State_None), QStringLiteral("subject/tree_item_normal_2.png"));
    QCOMPARE(mainDelegate.markerFile(leaf, QStyle::State_Selected), QStringLiteral("subject/tree_item_normal.png"));
    QCOMPARE(mainDelegate.markerFile(leaf, QStyle::State_MouseOver), QStringLiteral("subject/tree_item_normal.png"));
    QVERIFY(mainDelegate.markerFile(folder, QStyle::State_None).isNull());
    QVERIFY(blockDelegate.markerFile(leaf, QStyle::State_None).isNull());
    delete model;
}

QTEST_MAIN(tst_TFTreeWidgets)
#include "tst_tftreewidgets.moc"
