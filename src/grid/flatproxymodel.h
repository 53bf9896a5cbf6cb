#pragma once

#include "bandgrid_global.h"

#include <QAbstractProxyModel>
#include <QPersistentModelIndex>
#include <QVector>

namespace BandGrid {

// A proxy over a flat table that arranges the source's rows. Subclasses
// give the mapping of rows; this class follows the source: a change of
// structure rebuilds the mapping, a change of data is passed on.
//
// Some models replace their rows and only say dataChanged; a row or column
// count that differs from the last one seen is then taken as a reset.
class BANDGRID_EXPORT FlatProxyModel : public QAbstractProxyModel
{
    Q_OBJECT
public:
    explicit FlatProxyModel(QObject *parent = nullptr);

    void setSourceModel(QAbstractItemModel *source) override;

    QModelIndex index(int row, int column, const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    bool hasChildren(const QModelIndex &parent = QModelIndex()) const override;
    QModelIndex mapToSource(const QModelIndex &proxyIndex) const override;
    QModelIndex mapFromSource(const QModelIndex &sourceIndex) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    QModelIndex sibling(int row, int column, const QModelIndex &idx) const override;
    // Every cell is its own buddy; rows of the proxy's own have no source to ask.
    QModelIndex buddy(const QModelIndex &index) const override { return index; }

    // Row of the source for a row here; -1 for a row of the proxy's own.
    virtual int sourceRow(int proxyRow) const = 0;
    // Row here for a row of the source; -1 when it is not shown.
    virtual int proxyRow(int sourceRow) const = 0;

protected:
    // Recomputes the mapping from the source as it is now.
    virtual void rebuild() = 0;
    // What a change of data in some columns and roles does to the rows
    // here: nothing, a new order (same rows), or new rows altogether.
    enum class DataChangeEffect { None, NewOrder, NewRows };
    virtual DataChangeEffect effectOfDataChange(int firstColumn, int lastColumn,
                                                const QVector<int> &roles) const
    {
        Q_UNUSED(firstColumn) Q_UNUSED(lastColumn) Q_UNUSED(roles)
        return DataChangeEffect::None;
    }

    int sourceRowCount() const { return m_sourceRows; }
    void resetMapping();
    // Rebuilds under layoutChanged, carrying persistent indexes (the
    // current cell, the selection) to where their source rows went.
    void relayout();

private:
    void takeSourceCounts();
    void onSourceDataChanged(const QModelIndex &topLeft, const QModelIndex &bottomRight,
                             const QVector<int> &roles);
    void onSourceHeaderDataChanged(Qt::Orientation orientation, int first, int last);
    void onSourceLayoutAboutToBeChanged();
    void onSourceLayoutChanged();

    int m_sourceRows = 0;
    int m_sourceColumns = 0;
    bool m_inReset = false;
    QVector<QPair<QPersistentModelIndex, QPersistentModelIndex>> m_saved;
    QVector<QMetaObject::Connection> m_connections;
};

} // namespace BandGrid
