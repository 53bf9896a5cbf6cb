#include "filterwidget/tffocusdelegate.h"

#include <QColor>
#include <QPainter>

TFFocusDelegate::TFFocusDelegate(QObject *parent)
    : QStyledItemDelegate(parent)
{
}

void TFFocusDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    if (option.state & QStyle::State_HasFocus) {
        QStyleOptionViewItem plain(option);
        plain.state &= ~QStyle::State_HasFocus;
        painter->setBrush(QColor(QStringLiteral("#464b5a")));
        QStyledItemDelegate::paint(painter, plain, index);
        return;
    }
    QStyledItemDelegate::paint(painter, option, index);
}
