#include "tfrowdelegate.h"

#include "tfcore/tfcore.h"

#include <QPainter>
#include <QPixmap>

TFRowDelegate::TFRowDelegate(bool block, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_block(block)
{
}

QString TFRowDelegate::markerFile(const QModelIndex &index, QStyle::State state) const
{
    if (m_block || !index.isValid() || index.model()->hasChildren(index))
        return QString();
    const bool lit = state & (QStyle::State_Selected | QStyle::State_MouseOver);
    return lit ? QStringLiteral("subject/tree_item_normal.png") : QStringLiteral("subject/tree_item_normal_2.png");
}

void TFRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    const QString file = markerFile(index, option.state);
    if (file.isEmpty())
        return;
    const QPixmap marker(TFCore::instance()->getCurrentSkinPath(file));
    if (marker.isNull())
        return;
    const QRect rect = option.rect;
    painter->drawPixmap(rect.left() - 14, rect.top() + (rect.height() - marker.height()) / 2, marker);
}
