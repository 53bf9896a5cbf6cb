#include "sortproxymodel.h"

#include "sortkeys.h"

namespace BandGrid {

SortProxyModel::SortProxyModel(QObject *parent)
    : FlatProxyModel(parent)
{
}

int SortProxyModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : sourceRowCount();
}

int SortProxyModel::sourceRow(int proxyRow) const
{
    if (proxyRow < 0 || proxyRow >= sourceRowCount())
        return -1;
    return m_toSource.empty() ? proxyRow : m_toSource[size_t(proxyRow)];
}

int SortProxyModel::proxyRow(int sourceRow) const
{
    if (sourceRow < 0 || sourceRow >= sourceRowCount())
        return -1;
    return m_fromSource.empty() ? sourceRow : m_fromSource[size_t(sourceRow)];
}

void SortProxyModel::sortBy(int column, int role, Qt::SortOrder order, bool localeAware)
{
    m_column = column;
    m_role = role;
    m_order = order;
    m_localeAware = localeAware;
    relayout();
}

void SortProxyModel::rebuild()
{
    m_toSource.clear();
    m_fromSource.clear();
    QAbstractItemModel *source = sourceModel();
    if (!source || m_column < 0 || m_column >= source->columnCount())
        return;
    const int rows = sourceRowCount();
    SortKeys keys(m_locale, m_localeAware);
    for (int row = 0; row < rows; ++row)
        keys.append(source->index(row, m_column).data(m_role));
    m_toSource = keys.order(m_order);
    m_fromSource.assign(size_t(rows), -1);
    for (int i = 0; i < rows; ++i)
        m_fromSource[size_t(m_toSource[size_t(i)])] = i;
}

} // namespace BandGrid

namespace BandGrid {

FlatProxyModel::DataChangeEffect SortProxyModel::effectOfDataChange(int firstColumn, int lastColumn,
                                                              const QVector<int> &roles) const
{
    // New values in the sorted column and role are sorted again.
    const bool moves = m_column >= firstColumn && m_column <= lastColumn
        && (roles.isEmpty() || roles.contains(m_role));
    return moves ? DataChangeEffect::NewOrder : DataChangeEffect::None;
}

} // namespace BandGrid
