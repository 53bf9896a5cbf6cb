#pragma once

#include <QStyledItemDelegate>

// Paints a tree row, and for a leaf of the main tree the leaf marker to the
// left of the row.
class TFRowDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit TFRowDelegate(bool block, QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;

    // The marker a leaf gets in a given state, or a null name when none.
    QString markerFile(const QModelIndex &index, QStyle::State state) const;

private:
    bool m_block;
};
