#include "filterwidget/flowlayout.h"

#include <QWidget>

FlowLayout::FlowLayout(QWidget *parent, int margin, int hSpacing, int vSpacing)
    : QLayout(parent)
    , m_hSpace(hSpacing)
    , m_vSpace(vSpacing)
{
    setContentsMargins(margin, margin, margin, margin);
}

FlowLayout::FlowLayout(int margin, int hSpacing, int vSpacing)
    : m_hSpace(hSpacing)
    , m_vSpace(vSpacing)
{
    setContentsMargins(margin, margin, margin, margin);
}

FlowLayout::~FlowLayout()
{
    while (QLayoutItem *item = takeAt(0))
        delete item;
}

void FlowLayout::addItem(QLayoutItem *item)
{
    m_items.append(item);
}

int FlowLayout::horizontalSpacing() const
{
    return m_hSpace >= 0 ? m_hSpace : smartSpacing(QStyle::PM_LayoutHorizontalSpacing);
}

int FlowLayout::verticalSpacing() const
{
    return m_vSpace >= 0 ? m_vSpace : smartSpacing(QStyle::PM_LayoutVerticalSpacing);
}

Qt::Orientations FlowLayout::expandingDirections() const
{
    return {};
}

bool FlowLayout::hasHeightForWidth() const
{
    return true;
}

int FlowLayout::heightForWidth(int width) const
{
    return doLayout(QRect(0, 0, width, 0), true);
}

int FlowLayout::count() const
{
    return m_items.size();
}

QLayoutItem *FlowLayout::itemAt(int index) const
{
    return index >= 0 && index < m_items.size() ? m_items.at(index) : nullptr;
}

QLayoutItem *FlowLayout::takeAt(int index)
{
    return index >= 0 && index < m_items.size() ? m_items.takeAt(index) : nullptr;
}

QSize FlowLayout::minimumSize() const
{
    QSize size;
    for (const QLayoutItem *item : m_items)
        size = size.expandedTo(item->minimumSize());
    const QMargins margins = contentsMargins();
    return size + QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

QSize FlowLayout::sizeHint() const
{
    return minimumSize();
}

void FlowLayout::setGeometry(const QRect &rect)
{
    QLayout::setGeometry(rect);
    doLayout(rect, false);
}

int FlowLayout::itemSpacing(QLayoutItem *item, Qt::Orientation orientation) const
{
    const int configured = orientation == Qt::Horizontal ? horizontalSpacing() : verticalSpacing();
    if (configured != -1)
        return configured;
    const QWidget *widget = item->widget();
    if (!widget)
        return 0;
    const QSizePolicy::ControlType type = widget->sizePolicy().controlType();
    return widget->style()->layoutSpacing(type, type, orientation);
}

int FlowLayout::doLayout(const QRect &rect, bool testOnly) const
{
    const QMargins margins = contentsMargins();
    const QRect area = rect.adjusted(margins.left(), margins.top(), -margins.right(), -margins.bottom());
    int x = area.x();
    int y = area.y();
    int lineHeight = 0;
    bool lineEmpty = true;

    for (QLayoutItem *item : m_items) {
        // A hidden control takes no room, not even its spacing.
        if (item->isEmpty())
            continue;
        const QSize hint = item->sizeHint();
        const int spaceX = itemSpacing(item, Qt::Horizontal);
        const int spaceY = itemSpacing(item, Qt::Vertical);
        if (x + hint.width() > area.right() + 1 && !lineEmpty) {
            x = area.x();
            y += lineHeight + spaceY;
            lineHeight = 0;
        }
        if (!testOnly)
            item->setGeometry(QRect(QPoint(x, y), hint));
        x += hint.width() + spaceX;
        lineHeight = qMax(lineHeight, hint.height());
        lineEmpty = false;
    }
    return y + lineHeight - rect.y() + margins.bottom();
}

int FlowLayout::smartSpacing(QStyle::PixelMetric metric) const
{
    QObject *owner = parent();
    if (!owner)
        return -1;
    if (owner->isWidgetType()) {
        auto *widget = static_cast<QWidget *>(owner);
        return widget->style()->pixelMetric(metric, nullptr, widget);
    }
    return static_cast<QLayout *>(owner)->spacing();
}
