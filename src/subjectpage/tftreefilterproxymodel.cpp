#include "tftreefilterproxymodel.h"

bool TFTreeFilterProxyModel::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    const bool accepted = QSortFilterProxyModel::filterAcceptsRow(sourceRow, sourceParent);
    const QModelIndex source = sourceModel()->index(sourceRow, 0, sourceParent);
    const int children = sourceModel()->rowCount(source);
    if (children == 0)
        return accepted;
    for (int row = 0; row < children; ++row) {
        if (filterAcceptsRow(row, source))
            return true;
    }
    return false;
}
