#include "tftreewidgetcontainer.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonObject>
#include <QSplitter>
#include <QStandardItemModel>
#include <QTreeView>

namespace {

struct RowKeys
{
    const char *caption;
    const char *code;
    const char *parentCode;
};

const RowKeys kMainKeys = {"NODE_CAP", "NODE_CODE", "P_NODE_CODE"};
const RowKeys kBlockKeys = {"SECT_NAME", "SECT_ID", "P_SECT_ID"};

qlonglong readInteger(const QJsonObject &row, const char *key)
{
    // A number sent as a string reads as well.
    return row.value(QLatin1String(key)).toVariant().toLongLong();
}

bool isAncestorOrSelf(const QStandardItem *candidate, const QStandardItem *item)
{
    for (const QStandardItem *walk = item; walk; walk = walk->parent()) {
        if (walk == candidate)
            return true;
    }
    return false;
}

// Builds the flat rows into a tree under the model's root: every row hangs
// under the first row whose code is its parent code, the root having the
// root code. Rows with the root's own code, and rows whose parent is not in
// the array, are left out.
bool buildTree(QStandardItemModel *model, const QJsonValue &value, qlonglong rootCode, const RowKeys &keys,
               bool checkable)
{
    const QJsonArray rows = value.toArray();
    if (!value.isArray() || rows.isEmpty())
        return false;

    QList<QStandardItem *> items;
    for (const QJsonValue &element : rows) {
        if (!element.isObject())
            continue;
        const QJsonObject row = element.toObject();
        const qlonglong code = readInteger(row, keys.code);
        if (code == rootCode)
            continue;
        auto *item = new QStandardItem(row.value(QLatin1String(keys.caption)).toString());
        item->setEditable(false);
        item->setData(code, TFTreeWidgetContainer::CodeRole);
        item->setData(readInteger(row, keys.parentCode), TFTreeWidgetContainer::ParentCodeRole);
        if (!checkable) {
            item->setData(readInteger(row, "NODE_TYP"), TFTreeWidgetContainer::NodeTypeRole);
            item->setData(readInteger(row, "LEVEL"), TFTreeWidgetContainer::LevelRole);
            if (row.contains(QLatin1String("OBJ_VW_ID")))
                item->setData(readInteger(row, "OBJ_VW_ID"), TFTreeWidgetContainer::ViewIdRole);
            item->setData(row.value(QLatin1String("NODE_URL")).toString(), TFTreeWidgetContainer::UrlRole);
        } else {
            item->setCheckable(true);
            item->setCheckState(Qt::Unchecked);
        }
        items.append(item);
    }

    QStandardItem *root = model->invisibleRootItem();
    for (QStandardItem *item : qAsConst(items)) {
        const qlonglong parentCode = item->data(TFTreeWidgetContainer::ParentCodeRole).toLongLong();
        if (parentCode == rootCode) {
            root->appendRow(item);
            continue;
        }
        for (QStandardItem *candidate : qAsConst(items)) {
            if (candidate != item && candidate->data(TFTreeWidgetContainer::CodeRole).toLongLong() == parentCode) {
                if (!isAncestorOrSelf(item, candidate))
                    candidate->appendRow(item);
                break;
            }
        }
    }
    // Rows that found no parent (and what hangs under them) are not shown.
    QList<QStandardItem *> orphans;
    for (QStandardItem *item : qAsConst(items)) {
        if (!item->model() && !item->parent())
            orphans.append(item);
    }
    qDeleteAll(orphans);
    return true;
}

void collectChecked(const QStandardItem *item, QJsonArray &codes)
{
    for (int row = 0; row < item->rowCount(); ++row) {
        const QStandardItem *child = item->child(row);
        if (child->checkState() == Qt::Checked)
            codes.append(int(child->data(TFTreeWidgetContainer::CodeRole).toLongLong()));
        collectChecked(child, codes);
    }
}

void setCheckRecursive(QStandardItem *item, Qt::CheckState state)
{
    item->setCheckState(state);
    for (int row = 0; row < item->rowCount(); ++row)
        setCheckRecursive(item->child(row), state);
}

QTreeView *makeTreeView(const QString &name, QWidget *parent)
{
    auto *view = new QTreeView(parent);
    view->setObjectName(name);
    view->setEditTriggers(QAbstractItemView::NoEditTriggers);
    view->setAnimated(true);
    view->setHeaderHidden(true);
    return view;
}

} // namespace

TFTreeWidgetContainer::TFTreeWidgetContainer(QWidget *parent)
    : TFVerticalContainer(parent)
    , m_mainView(makeTreeView(QStringLiteral("SubjectTreeView"), this))
    , m_blockView(makeTreeView(QStringLiteral("BlockTreeView"), this))
{
    setObjectName(QStringLiteral("TreeContainer"));
    addWidget(m_mainView);
    addWidget(m_blockView);
    m_blockView->hide();
    connect(m_mainView, &QTreeView::clicked, this, &TFTreeWidgetContainer::mainTreeClicked);
}

bool TFTreeWidgetContainer::buildMainModel(const QJsonValue &rows, int rootCode)
{
    auto *model = new QStandardItemModel(this);
    const bool built = buildTree(model, rows, rootCode, kMainKeys, false);
    m_mainView->setModel(model);
    delete m_mainModel;
    m_mainModel = model;
    return built;
}

bool TFTreeWidgetContainer::loadMainTreeByName(const TFMenuCfg::MenuItem &record, const QJsonValue &rows,
                                               int rootCode, const QString &text)
{
    const bool built = buildMainModel(rows, rootCode);
    if (m_mainModel->rowCount() > 0) {
        QModelIndex index = findByText(record.itemName, false, record.obj_vw_id);
        if (!index.isValid())
            index = findByText(record.sectorName, true, 0);
        open(index, text);
    }
    return built;
}

bool TFTreeWidgetContainer::loadMainTreeByCode(const QString &code, const QJsonValue &rows, int rootCode,
                                               const QString &text)
{
    const bool built = buildMainModel(rows, rootCode);
    if (m_mainModel->rowCount() > 0)
        open(findByCode(code), text);
    return built;
}

void TFTreeWidgetContainer::loadBlockTree(const QJsonValue &rows)
{
    if (rows.isNull() && m_blockModel && m_blockModel->rowCount() > 0)
        return;
    auto *model = new QStandardItemModel(this);
    // The sector tree always hangs under code 0.
    buildTree(model, rows, 0, kBlockKeys, true);
    m_blockView->setModel(model);
    delete m_blockModel;
    m_blockModel = model;
}

QPair<QString, QVariant> TFTreeWidgetContainer::blockFilter() const
{
    QJsonArray codes;
    if (m_blockModel)
        collectChecked(m_blockModel->invisibleRootItem(), codes);
    return {QStringLiteral("filterBlock"), QVariant::fromValue(codes)};
}

QModelIndex TFTreeWidgetContainer::findByText(const QString &text, bool firstHit, qlonglong viewId) const
{
    if (text.isEmpty() || !m_mainModel || m_mainModel->rowCount() == 0)
        return QModelIndex();
    const QModelIndexList hits = m_mainModel->match(m_mainModel->index(0, 0), Qt::DisplayRole, text, -1,
                                                    Qt::MatchExactly | Qt::MatchRecursive);
    if (firstHit)
        return hits.value(0);
    for (const QModelIndex &hit : hits) {
        if (hit.data(ViewIdRole).toLongLong() == viewId)
            return hit;
    }
    return QModelIndex();
}

QModelIndex TFTreeWidgetContainer::findByCode(const QString &code) const
{
    if (!m_mainModel || m_mainModel->rowCount() == 0)
        return QModelIndex();
    return m_mainModel->match(m_mainModel->index(0, 0), CodeRole, QVariant(code), 1,
                              Qt::MatchExactly | Qt::MatchRecursive).value(0);
}

QModelIndex TFTreeWidgetContainer::findBlockForCheck(const QString &text) const
{
    if (!m_blockModel || m_blockModel->rowCount() == 0)
        return QModelIndex();
    const QModelIndex start = m_blockModel->index(0, 0);
    QModelIndexList hits = m_blockModel->match(start, Qt::DisplayRole, text, 1,
                                               Qt::MatchFixedString | Qt::MatchRecursive);
    if (hits.isEmpty())
        hits = m_blockModel->match(start, CodeRole, text.toInt(), 1, Qt::MatchExactly | Qt::MatchRecursive);
    return hits.value(0);
}

void TFTreeWidgetContainer::open(QModelIndex index, const QString &text)
{
    if (!m_mainModel || m_mainModel->rowCount() == 0)
        return;
    if (!index.isValid())
        index = m_mainModel->index(0, 0);
    // Go down to a child captioned text, else the first child, to a leaf.
    QModelIndex target = index;
    while (m_mainModel->rowCount(target) > 0) {
        QModelIndex next = m_mainModel->index(0, 0, target);
        if (!text.isEmpty()) {
            for (int row = 0; row < m_mainModel->rowCount(target); ++row) {
                const QModelIndex child = m_mainModel->index(row, 0, target);
                if (child.data(Qt::DisplayRole).toString() == text) {
                    next = child;
                    break;
                }
            }
        }
        target = next;
    }
    for (QModelIndex walk = target.parent(); walk.isValid(); walk = walk.parent())
        m_mainView->expand(walk);
    m_mainView->setCurrentIndex(target);
    mainTreeClicked(target);
}

void TFTreeWidgetContainer::mainTreeClicked(const QModelIndex &index)
{
    QStandardItem *item = m_mainModel ? m_mainModel->itemFromIndex(index) : nullptr;
    if (item)
        slotMainTreeItemClicked(item);
    if (!item || item->hasChildren())
        return;
    for (QModelIndex walk = index.parent(); walk.isValid(); walk = walk.parent()) {
        if (walk.data(LevelRole).toLongLong() == 1) {
            emit groupChanged(walk.data(Qt::DisplayRole).toString());
            break;
        }
    }
}

void TFTreeWidgetContainer::slotMainTreeItemClicked(QStandardItem *item)
{
    if (!item)
        return;
    const qlonglong id = item->data(ViewIdRole).toLongLong();
    const QString text = item->text();
    QString url = item->data(UrlRole).toString();
    qDebug() << "main tree item clicked obj_vm_id:" << id << " previewId:" << m_lastViewId << " cap:" << text
             << url;
    if (!url.isEmpty()) {
        qDebug() << "in here--------->1";
        m_lastViewId = id;
    } else {
        if (id == 0 || id == m_lastViewId)
            return;
        qDebug() << "in here--------->2";
        m_lastViewId = id;
        m_blockView->hide();
        resetBlockTree();
        url = QString();
    }
    emit signalItemClicked(id, text, url);
}

void TFTreeWidgetContainer::resetBlockTree()
{
    if (m_blockModel) {
        for (int row = 0; row < m_blockModel->rowCount(); ++row)
            setCheckRecursive(m_blockModel->item(row), Qt::Unchecked);
    }
    m_blockView->collapseAll();
}

void TFTreeWidgetContainer::setRootSector(QString rootItem)
{
    if (!m_blockModel || m_blockModel->rowCount() == 0)
        return;
    m_blockView->show();
    if (rootItem.isEmpty())
        return;
    const QModelIndex index = findBlockForCheck(rootItem);
    if (index.isValid())
        m_blockView->setRootIndex(index);
}

void TFTreeWidgetContainer::slotSetSector(QString sectorNum)
{
    if (!m_blockModel || m_blockModel->rowCount() == 0)
        return;
    m_blockView->show();
    resetBlockTree();
    if (sectorNum.isEmpty())
        return;
    const QModelIndex index = findBlockForCheck(sectorNum);
    if (!index.isValid())
        return;
    setCheckRecursive(m_blockModel->itemFromIndex(index), Qt::Checked);
    for (QModelIndex walk = index; walk.isValid(); walk = walk.parent())
        m_blockView->expand(walk);
}
