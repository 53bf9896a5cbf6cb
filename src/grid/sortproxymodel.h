#pragma once

#include "flatproxymodel.h"

#include <QLocale>

#include <vector>

namespace BandGrid {

// Puts the source's rows in the order of one column's role. The role's
// values are read once per sort, made into keys, and the rows sorted by the
// keys; the order then stays until the next sort or a new set of rows.
class BANDGRID_EXPORT SortProxyModel : public FlatProxyModel
{
    Q_OBJECT
public:
    explicit SortProxyModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int sourceRow(int proxyRow) const override;
    int proxyRow(int sourceRow) const override;

    // Sorts by a role of a column; a column below 0 restores the source order.
    void sortBy(int column, int role, Qt::SortOrder order, bool localeAware);
    int sortColumn() const { return m_column; }
    Qt::SortOrder sortOrder() const { return m_order; }

    QLocale locale() const { return m_locale; }
    void setLocale(const QLocale &locale) { m_locale = locale; }

protected:
    void rebuild() override;
    DataChangeEffect effectOfDataChange(int firstColumn, int lastColumn,
                                        const QVector<int> &roles) const override;

private:
    int m_column = -1;
    int m_role = Qt::DisplayRole;
    Qt::SortOrder m_order = Qt::AscendingOrder;
    bool m_localeAware = true;
    QLocale m_locale;
    std::vector<int> m_toSource;   // empty: the source's order
    std::vector<int> m_fromSource;
};

} // namespace BandGrid
