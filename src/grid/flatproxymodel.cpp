#include "flatproxymodel.h"

namespace BandGrid {

FlatProxyModel::FlatProxyModel(QObject *parent)
    : QAbstractProxyModel(parent)
{
}

void FlatProxyModel::setSourceModel(QAbstractItemModel *source)
{
    beginResetModel();
    for (const QMetaObject::Connection &c : qAsConst(m_connections))
        disconnect(c);
    m_connections.clear();
    QAbstractProxyModel::setSourceModel(source);
    if (source) {
        auto reset = [this] { resetMapping(); };
        m_connections
            << connect(source, &QAbstractItemModel::modelAboutToBeReset, this, [this] {
                   m_inReset = true;
                   beginResetModel();
               })
            << connect(source, &QAbstractItemModel::modelReset, this, [this] {
                   takeSourceCounts();
                   rebuild();
                   m_inReset = false;
                   endResetModel();
               })
            // The base class turns to an empty model first; then the rows go.
            << connect(source, &QObject::destroyed, this, reset)
            << connect(source, &QAbstractItemModel::rowsInserted, this, reset)
            << connect(source, &QAbstractItemModel::rowsRemoved, this, reset)
            << connect(source, &QAbstractItemModel::rowsMoved, this, reset)
            << connect(source, &QAbstractItemModel::columnsInserted, this, reset)
            << connect(source, &QAbstractItemModel::columnsRemoved, this, reset)
            << connect(source, &QAbstractItemModel::columnsMoved, this, reset)
            << connect(source, &QAbstractItemModel::dataChanged, this, &FlatProxyModel::onSourceDataChanged)
            << connect(source, &QAbstractItemModel::headerDataChanged, this,
                       &FlatProxyModel::onSourceHeaderDataChanged)
            << connect(source, &QAbstractItemModel::layoutAboutToBeChanged, this,
                       &FlatProxyModel::onSourceLayoutAboutToBeChanged)
            << connect(source, &QAbstractItemModel::layoutChanged, this,
                       &FlatProxyModel::onSourceLayoutChanged);
    }
    takeSourceCounts();
    rebuild();
    endResetModel();
}

void FlatProxyModel::takeSourceCounts()
{
    QAbstractItemModel *source = sourceModel();
    m_sourceRows = source ? source->rowCount() : 0;
    m_sourceColumns = source ? source->columnCount() : 0;
}

void FlatProxyModel::resetMapping()
{
    if (m_inReset)
        return;
    beginResetModel();
    takeSourceCounts();
    rebuild();
    endResetModel();
}

void FlatProxyModel::relayout()
{
    onSourceLayoutAboutToBeChanged();
    onSourceLayoutChanged();
}

QModelIndex FlatProxyModel::index(int row, int column, const QModelIndex &parent) const
{
    if (parent.isValid() || row < 0 || column < 0 || row >= rowCount() || column >= m_sourceColumns)
        return QModelIndex();
    return createIndex(row, column);
}

QModelIndex FlatProxyModel::parent(const QModelIndex &) const
{
    return QModelIndex();
}

QModelIndex FlatProxyModel::sibling(int row, int column, const QModelIndex &) const
{
    return index(row, column);
}

int FlatProxyModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_sourceColumns;
}

bool FlatProxyModel::hasChildren(const QModelIndex &parent) const
{
    return !parent.isValid() && rowCount() > 0 && m_sourceColumns > 0;
}

QModelIndex FlatProxyModel::mapToSource(const QModelIndex &proxyIndex) const
{
    if (!proxyIndex.isValid() || proxyIndex.model() != this || !sourceModel())
        return QModelIndex();
    const int row = sourceRow(proxyIndex.row());
    return row < 0 ? QModelIndex() : sourceModel()->index(row, proxyIndex.column());
}

QModelIndex FlatProxyModel::mapFromSource(const QModelIndex &sourceIndex) const
{
    if (!sourceIndex.isValid() || sourceIndex.model() != sourceModel())
        return QModelIndex();
    const int row = proxyRow(sourceIndex.row());
    return row < 0 ? QModelIndex() : index(row, sourceIndex.column());
}

QVariant FlatProxyModel::data(const QModelIndex &index, int role) const
{
    if (role == SourceRowRole)
        return index.isValid() ? sourceRow(index.row()) : -1;
    return QAbstractProxyModel::data(index, role);
}

QVariant FlatProxyModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (!sourceModel())
        return QVariant();
    if (orientation == Qt::Vertical) {
        const int row = sourceRow(section);
        return row < 0 ? QVariant() : sourceModel()->headerData(row, orientation, role);
    }
    return sourceModel()->headerData(section, orientation, role);
}

void FlatProxyModel::onSourceDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                                         const QVector<int> &roles)
{
    QAbstractItemModel *source = sourceModel();
    if (source->rowCount() != m_sourceRows || source->columnCount() != m_sourceColumns) {
        resetMapping();
        return;
    }
    if (rowCount() == 0 || !topLeft.isValid() || !bottomRight.isValid())
        return;
    switch (effectOfDataChange(topLeft.column(), bottomRight.column(), roles)) {
    case DataChangeEffect::NewRows:
        resetMapping();
        return;
    case DataChangeEffect::NewOrder:
        relayout();
        break;
    case DataChangeEffect::None:
        break;
    }
    // Rows may sit anywhere here; the columns are the same.
    emit dataChanged(index(0, topLeft.column()), index(rowCount() - 1, bottomRight.column()), roles);
}

void FlatProxyModel::onSourceHeaderDataChanged(Qt::Orientation orientation, int first, int last)
{
    if (sourceModel()->columnCount() != m_sourceColumns || sourceModel()->rowCount() != m_sourceRows) {
        resetMapping();
        return;
    }
    if (orientation == Qt::Horizontal)
        emit headerDataChanged(orientation, first, last);
    else if (rowCount() > 0)
        emit headerDataChanged(orientation, 0, rowCount() - 1);
}

void FlatProxyModel::onSourceLayoutAboutToBeChanged()
{
    emit layoutAboutToBeChanged(QList<QPersistentModelIndex>(), QAbstractItemModel::VerticalSortHint);
    m_saved.clear();
    const QModelIndexList persistent = persistentIndexList();
    for (const QModelIndex &idx : persistent)
        m_saved.append({QPersistentModelIndex(idx), QPersistentModelIndex(mapToSource(idx))});
}

void FlatProxyModel::onSourceLayoutChanged()
{
    takeSourceCounts();
    rebuild();
    QModelIndexList from, to;
    for (const auto &saved : qAsConst(m_saved)) {
        from << saved.first;
        to << mapFromSource(saved.second);
    }
    m_saved.clear();
    changePersistentIndexList(from, to);
    emit layoutChanged(QList<QPersistentModelIndex>(), QAbstractItemModel::VerticalSortHint);
}

} // namespace BandGrid
