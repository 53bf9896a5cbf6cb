#include "tftreemodel.h"

#include <QAbstractProxyModel>
#include <QDebug>
#include <QHash>
#include <QJsonArray>
#include <QPair>
#include <QVector>

namespace {

qlonglong readInteger(const QJsonObject &row, const char *key)
{
    // A code sent as a string ("12") reads as the number.
    return row.value(QLatin1String(key)).toVariant().toLongLong();
}

} // namespace

TFTreeItem::TFTreeItem()
{
    setData(QString(), Qt::DisplayRole);
    setData(qlonglong(0), CodeRole);
    setData(qlonglong(0), ParentCodeRole);
    setData(qlonglong(0), NodeTypeRole);
    setData(qlonglong(0), LevelRole);
    setData(QString(), UrlRole);
}

TFSubjectTreeModel::TFSubjectTreeModel(QObject *parent)
    : QAbstractItemModel(parent)
    , m_root(new TFTreeItem)
{
}

TFSubjectTreeModel::~TFSubjectTreeModel()
{
    delete m_root;
}

TFTreeItem *TFSubjectTreeModel::createTreeNode(const QJsonObject &row)
{
    auto *item = new TFTreeItem;
    item->setData(row.value(QLatin1String("NODE_CAP")).toString(), Qt::DisplayRole);
    item->setData(readInteger(row, "NODE_CODE"), TFTreeItem::CodeRole);
    item->setData(readInteger(row, "P_NODE_CODE"), TFTreeItem::ParentCodeRole);
    item->setData(readInteger(row, "NODE_TYP"), TFTreeItem::NodeTypeRole);
    item->setData(readInteger(row, "LEVEL"), TFTreeItem::LevelRole);
    item->setData(readInteger(row, "OBJ_VW_ID"), TFTreeItem::ViewIdRole);
    item->setData(row.value(QLatin1String("NODE_URL")).toString(), TFTreeItem::UrlRole);
    qDebug() << "node infor : " << item->code() << item->text();
    return item;
}

TFTreeItem *TFSubjectTreeModel::createBlockTreeNode(const QJsonObject &row)
{
    auto *item = new TFTreeItem;
    item->setData(row.value(QLatin1String("SECT_NAME")).toString(), Qt::DisplayRole);
    item->setData(readInteger(row, "SECT_ID"), TFTreeItem::CodeRole);
    item->setData(readInteger(row, "P_SECT_ID"), TFTreeItem::ParentCodeRole);
    return item;
}

bool TFSubjectTreeModel::build(const QJsonValue &rows, int rootCode, bool checkable)
{
    m_checkable = checkable;
    // The block tree always hangs under the code 0.
    m_root->setData(qlonglong(checkable ? 0 : rootCode), TFTreeItem::CodeRole);
    if (!rows.isArray() || rows.toArray().isEmpty())
        return false;

    beginResetModel();
    auto create = checkable ? &TFSubjectTreeModel::createBlockTreeNode : &TFSubjectTreeModel::createTreeNode;
    QList<TFTreeItem *> work;
    const QJsonArray array = rows.toArray();
    for (const QJsonValue &element : array) {
        if (!element.isObject())
            continue;
        TFTreeItem *node = create(element.toObject());
        if (node->code() == m_root->code())
            delete node;
        else
            work.append(node);
    }
    work.prepend(m_root);

    // Attach after every node exists, so that a child listed before its
    // parent still finds it. A node's parent is the first other node in the
    // list with its parent code: the first node with that code, or the
    // second when the first is the node itself. Two per code are enough.
    QHash<qlonglong, QPair<TFTreeItem *, TFTreeItem *>> byCode;
    byCode.reserve(work.size());
    for (TFTreeItem *node : qAsConst(work)) {
        auto found = byCode.find(node->code());
        if (found == byCode.end())
            byCode.insert(node->code(), qMakePair(node, static_cast<TFTreeItem *>(nullptr)));
        else if (!found->second)
            found->second = node;
    }
    QHash<TFTreeItem *, TFTreeItem *> parentOf;
    parentOf.reserve(work.size());
    for (TFTreeItem *node : qAsConst(work)) {
        if (node == m_root)
            continue; // the root hangs under nothing
        const auto found = byCode.constFind(node->parentCode());
        if (found == byCode.constEnd())
            continue;
        TFTreeItem *parent = found->first != node ? found->first : found->second;
        if (parent)
            parentOf.insert(node, parent);
    }

    // Only nodes whose chain of parents ends at the root are shown: rows
    // whose parent never came, and rows that name each other as parent, are
    // not. Each chain is walked once; what it learns is kept.
    enum Reach { Unknown, Walking, Reaches, Lost };
    QHash<TFTreeItem *, Reach> reach;
    reach.reserve(work.size());
    reach.insert(m_root, Reaches);
    QVector<TFTreeItem *> chain;
    for (TFTreeItem *node : qAsConst(work)) {
        chain.clear();
        TFTreeItem *walk = node;
        Reach found = Unknown;
        for (;;) {
            const Reach known = reach.value(walk, Unknown);
            if (known == Reaches || known == Lost) {
                found = known;
                break;
            }
            if (known == Walking) { // a ring of rows
                found = Lost;
                break;
            }
            reach.insert(walk, Walking);
            chain.append(walk);
            TFTreeItem *parent = parentOf.value(walk, nullptr);
            if (!parent) {
                found = Lost;
                break;
            }
            walk = parent;
        }
        for (TFTreeItem *walked : qAsConst(chain))
            reach.insert(walked, found);
    }

    // Children in array order.
    QList<TFTreeItem *> orphans;
    for (TFTreeItem *node : qAsConst(work)) {
        if (node == m_root)
            continue;
        if (reach.value(node) == Reaches)
            parentOf.value(node)->appendRow(node);
        else
            orphans.append(node);
    }
    // Rows that are not shown are freed.
    qDeleteAll(orphans);
    endResetModel();
    clearChecks();
    return true;
}

void TFSubjectTreeModel::clearChecks()
{
    m_checked.clear();
}

QVariantList TFSubjectTreeModel::checkedCodes() const
{
    QVariantList codes;
    if (!m_checkable)
        return codes;
    for (QModelIndex index : m_checked) {
        if (auto *proxy = qobject_cast<const QAbstractProxyModel *>(index.model()))
            index = proxy->mapToSource(index);
        if (TFTreeItem *item = itemFromIndex(index))
            codes.append(int(item->code()));
    }
    return codes;
}

TFTreeItem *TFSubjectTreeModel::itemFromIndex(const QModelIndex &index) const
{
    if (!index.isValid() || index.model() != this)
        return nullptr;
    return static_cast<TFTreeItem *>(index.internalPointer());
}

QModelIndex TFSubjectTreeModel::indexOfItem(QStandardItem *item) const
{
    if (!item || item == m_root || !item->parent())
        return QModelIndex();
    return createIndex(item->row(), 0, item);
}

QModelIndex TFSubjectTreeModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return QModelIndex();
    QStandardItem *parentItem = parent.isValid() ? itemFromIndex(parent) : m_root;
    QStandardItem *child = parentItem ? parentItem->child(row) : nullptr;
    return child ? createIndex(row, column, child) : QModelIndex();
}

QModelIndex TFSubjectTreeModel::parent(const QModelIndex &child) const
{
    TFTreeItem *item = itemFromIndex(child);
    if (!item)
        return QModelIndex();
    return indexOfItem(item->parent());
}

int TFSubjectTreeModel::rowCount(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return 0;
    QStandardItem *item = parent.isValid() ? itemFromIndex(parent) : m_root;
    return item ? item->rowCount() : 0;
}

int TFSubjectTreeModel::columnCount(const QModelIndex &) const
{
    return 1;
}

QVariant TFSubjectTreeModel::data(const QModelIndex &index, int role) const
{
    TFTreeItem *item = itemFromIndex(index);
    if (!item)
        return QVariant();
    if (m_checkable && role == Qt::CheckStateRole)
        return m_checked.contains(index) ? Qt::Checked : Qt::Unchecked;
    return item->data(role);
}

bool TFSubjectTreeModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole || !m_checkable || !index.isValid())
        return QAbstractItemModel::setData(index, value, role);

    const int state = value.toInt();
    if (state == Qt::Unchecked) {
        if (m_checked.remove(index))
            emit dataChanged(index, index, {Qt::CheckStateRole});
    } else if (state == Qt::Checked) {
        if (!m_checked.contains(index)) {
            m_checked.insert(index);
            emit dataChanged(index, index, {Qt::CheckStateRole});
        }
    }
    // A check or an uncheck reaches every descendant.
    for (int row = 0; row < rowCount(index); ++row)
        setData(this->index(row, 0, index), value, role);
    // Reports what the base class says, even when something changed.
    return QAbstractItemModel::setData(index, value, role);
}

QVariant TFSubjectTreeModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_root->data(section);
    return QVariant();
}

Qt::ItemFlags TFSubjectTreeModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    if (m_checkable)
        return Qt::ItemIsUserCheckable | Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return QAbstractItemModel::flags(index);
}
