#pragma once

#include "flatproxymodel.h"

#include <QLocale>
#include <QSet>

#include <vector>

namespace BandGrid {

// Gathers the source's rows under group rows, one per distinct display text
// of a column, groups in ascending order of that text. Rows keep the source's
// order inside their group. A group shows its rows only while expanded.
class BANDGRID_EXPORT GroupProxyModel : public FlatProxyModel
{
    Q_OBJECT
public:
    explicit GroupProxyModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    int sourceRow(int proxyRow) const override;
    int proxyRow(int sourceRow) const override;

    // -1 ends grouping.
    void setGroupColumn(int column);
    int groupColumn() const { return m_column; }

    int groupCount() const { return int(m_groups.size()); }
    // The group a row belongs to, or the group of a group row; -1 for none.
    int groupOfRow(int proxyRow) const;
    bool isGroupRow(int proxyRow) const;
    int groupRow(int group) const;
    QString groupText(int group) const;
    int groupSize(int group) const;
    bool isExpanded(int group) const;
    void setExpanded(int group, bool expanded);
    void expandAll();
    void collapseAll();
    std::vector<int> groupRows() const;

    QLocale locale() const { return m_locale; }
    void setLocale(const QLocale &locale) { m_locale = locale; }

protected:
    void rebuild() override;
    DataChangeEffect effectOfDataChange(int firstColumn, int lastColumn,
                                        const QVector<int> &roles) const override;

private:
    struct Group {
        QString text;
        std::vector<int> sourceRows;
        bool expanded = false;
    };
    void layOutRows();

    int m_column = -1;
    QLocale m_locale;
    std::vector<Group> m_groups;
    QSet<QString> m_expanded;   // survives new rows and new sorts
    // Entries: a source row (>= 0) or a group row (-1 - group).
    std::vector<int> m_entries;
    std::vector<int> m_fromSource;
    std::vector<int> m_groupRows;
};

} // namespace BandGrid
