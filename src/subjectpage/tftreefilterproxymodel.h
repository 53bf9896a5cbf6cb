#pragma once

#include <QSortFilterProxyModel>

// Keeps a leaf that matches the filter and every folder above such a leaf;
// a folder's own match does not keep it.
class TFTreeFilterProxyModel : public QSortFilterProxyModel
{
    Q_OBJECT
public:
    using QSortFilterProxyModel::QSortFilterProxyModel;

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;
};
