#include "groupproxymodel.h"

#include "sortkeys.h"

#include <QHash>

namespace BandGrid {

GroupProxyModel::GroupProxyModel(QObject *parent)
    : FlatProxyModel(parent)
{
}

bool GroupProxyModel::isGroupRow(int proxyRow) const
{
    return m_column >= 0 && proxyRow >= 0 && proxyRow < int(m_entries.size())
        && m_entries[size_t(proxyRow)] < 0;
}

int GroupProxyModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    return m_column >= 0 ? int(m_entries.size()) : sourceRowCount();
}

int GroupProxyModel::sourceRow(int proxyRow) const
{
    if (m_column < 0)
        return proxyRow >= 0 && proxyRow < sourceRowCount() ? proxyRow : -1;
    if (proxyRow < 0 || proxyRow >= int(m_entries.size()))
        return -1;
    const int entry = m_entries[size_t(proxyRow)];
    return entry >= 0 ? entry : -1;
}

int GroupProxyModel::proxyRow(int sourceRow) const
{
    if (sourceRow < 0 || sourceRow >= sourceRowCount())
        return -1;
    return m_column < 0 ? sourceRow : m_fromSource[size_t(sourceRow)];
}

QVariant GroupProxyModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return QVariant();
    if (!isGroupRow(index.row())) {
        if (role == GroupRowRole)
            return false;
        return FlatProxyModel::data(index, role);
    }
    const int group = -1 - m_entries[size_t(index.row())];
    switch (role) {
    case GroupRowRole: return true;
    case GroupCountRole: return int(m_groups[size_t(group)].sourceRows.size());
    case GroupExpandedRole: return m_groups[size_t(group)].expanded;
    case SourceRowRole: return -1;
    case Qt::DisplayRole:
        return index.column() == 0 ? QVariant(m_groups[size_t(group)].text) : QVariant();
    default:
        return QVariant();
    }
}

Qt::ItemFlags GroupProxyModel::flags(const QModelIndex &index) const
{
    if (index.isValid() && isGroupRow(index.row()))
        return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return FlatProxyModel::flags(index);
}

void GroupProxyModel::setGroupColumn(int column)
{
    if (column == m_column)
        return;
    beginResetModel();
    m_column = column;
    m_expanded.clear();
    rebuild();
    endResetModel();
}

int GroupProxyModel::groupOfRow(int row) const
{
    if (m_column < 0 || row < 0 || row >= int(m_entries.size()))
        return -1;
    for (int r = row; r >= 0; --r) {
        if (m_entries[size_t(r)] < 0)
            return -1 - m_entries[size_t(r)];
    }
    return -1;
}

int GroupProxyModel::groupRow(int group) const
{
    return group >= 0 && group < int(m_groupRows.size()) ? m_groupRows[size_t(group)] : -1;
}

QString GroupProxyModel::groupText(int group) const
{
    return group >= 0 && group < groupCount() ? m_groups[size_t(group)].text : QString();
}

int GroupProxyModel::groupSize(int group) const
{
    return group >= 0 && group < groupCount() ? int(m_groups[size_t(group)].sourceRows.size()) : 0;
}

bool GroupProxyModel::isExpanded(int group) const
{
    return group >= 0 && group < groupCount() && m_groups[size_t(group)].expanded;
}

void GroupProxyModel::setExpanded(int group, bool expanded)
{
    if (group < 0 || group >= groupCount() || m_groups[size_t(group)].expanded == expanded)
        return;
    Group &g = m_groups[size_t(group)];
    const int first = groupRow(group) + 1;
    const int last = first + int(g.sourceRows.size()) - 1;
    if (expanded)
        m_expanded.insert(g.text);
    else
        m_expanded.remove(g.text);
    const QModelIndex groupIndex = index(groupRow(group), 0);
    if (last < first) {
        g.expanded = expanded;
        emit dataChanged(groupIndex, groupIndex, {GroupExpandedRole});
        return;
    }
    if (expanded)
        beginInsertRows(QModelIndex(), first, last);
    else
        beginRemoveRows(QModelIndex(), first, last);
    g.expanded = expanded;
    layOutRows();
    if (expanded)
        endInsertRows();
    else
        endRemoveRows();
    emit dataChanged(groupIndex, groupIndex, {GroupExpandedRole});
}

void GroupProxyModel::expandAll()
{
    beginResetModel();
    for (Group &g : m_groups) {
        g.expanded = true;
        m_expanded.insert(g.text);
    }
    layOutRows();
    endResetModel();
}

void GroupProxyModel::collapseAll()
{
    beginResetModel();
    for (Group &g : m_groups)
        g.expanded = false;
    m_expanded.clear();
    layOutRows();
    endResetModel();
}

std::vector<int> GroupProxyModel::groupRows() const
{
    return m_groupRows;
}

void GroupProxyModel::rebuild()
{
    m_groups.clear();
    m_entries.clear();
    m_fromSource.clear();
    m_groupRows.clear();
    QAbstractItemModel *source = sourceModel();
    if (m_column < 0 || !source || m_column >= source->columnCount())
        return;

    // One pass over the column; groups first in order of appearance.
    QHash<QString, int> groupOfText;
    std::vector<Group> found;
    const int rows = sourceRowCount();
    for (int row = 0; row < rows; ++row) {
        const QString text = source->index(row, m_column).data(Qt::DisplayRole).toString();
        auto it = groupOfText.find(text);
        if (it == groupOfText.end()) {
            it = groupOfText.insert(text, int(found.size()));
            found.push_back(Group{text, {}, m_expanded.contains(text)});
        }
        found[size_t(it.value())].sourceRows.push_back(row);
    }
    // Then in ascending order of their texts, as a reader of the language expects.
    SortKeys keys(m_locale, true);
    for (const Group &g : found)
        keys.append(g.text);
    for (int i : keys.order(Qt::AscendingOrder))
        m_groups.push_back(std::move(found[size_t(i)]));
    layOutRows();
}

void GroupProxyModel::layOutRows()
{
    m_entries.clear();
    m_groupRows.clear();
    m_fromSource.assign(size_t(sourceRowCount()), -1);
    for (size_t g = 0; g < m_groups.size(); ++g) {
        m_groupRows.push_back(int(m_entries.size()));
        m_entries.push_back(-1 - int(g));
        if (!m_groups[g].expanded)
            continue;
        for (int row : m_groups[g].sourceRows) {
            m_fromSource[size_t(row)] = int(m_entries.size());
            m_entries.push_back(row);
        }
    }
}

} // namespace BandGrid

namespace BandGrid {

FlatProxyModel::DataChangeEffect GroupProxyModel::effectOfDataChange(int firstColumn, int lastColumn,
                                                              const QVector<int> &roles) const
{
    // New texts in the grouped column may move rows to other groups.
    const bool moves = m_column >= firstColumn && m_column <= lastColumn
        && (roles.isEmpty() || roles.contains(Qt::DisplayRole));
    return moves ? DataChangeEffect::NewRows : DataChangeEffect::None;
}

} // namespace BandGrid
