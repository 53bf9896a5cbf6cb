#pragma once

#include <QStyledItemDelegate>

// The delegate of every list in the filter bar: an item with focus is drawn
// like any other, without the dotted focus frame.
class TFFocusDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit TFFocusDelegate(QObject *parent = nullptr);

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};
