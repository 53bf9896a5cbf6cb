#include "bandheaderview.h"

#include "gridcolumn.h"
#include "tableview.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <climits>

namespace BandGrid {

BandHeaderView::BandHeaderView(TableView *owner, QWidget *parent)
    : QHeaderView(Qt::Horizontal, parent)
    , m_owner(owner)
{
    setSectionsClickable(true);
    setHighlightSections(false);
    setSectionsMovable(false);
    setDefaultAlignment(Qt::AlignCenter);
    setMinimumSectionSize(16);
    setDefaultSectionSize(100);
}

int BandHeaderView::captionRowHeight() const
{
    if (!m_owner)
        return fontMetrics().height() + 8;
    return QFontMetrics(m_owner->captionFont()).height() + 8;
}

QSize BandHeaderView::sizeHint() const
{
    QSize size = QHeaderView::sizeHint();
    if (!m_owner)
        return size;
    size.setHeight((m_owner->bandRowCount() + 1) * captionRowHeight());
    return size;
}

void BandHeaderView::setFrozenEdge(bool on)
{
    m_frozenEdge = on;
    viewport()->update();
}

QRect BandHeaderView::bandRect(int bandIndex) const
{
    const Band *band = m_owner ? m_owner->band(bandIndex) : nullptr;
    if (!band || !band->isVisible())
        return QRect();
    int left = INT_MAX;
    int right = INT_MIN;
    for (int logical = 0; logical < count(); ++logical) {
        if (isSectionHidden(logical) || coveredByOverlay(logical))
            continue;
        const Column *column = m_owner->column(logical);
        const Band *parent = column ? column->parentBand() : nullptr;
        if (!parent || (parent != band && !parent->isDescendantOf(band)))
            continue;
        const int x = sectionViewportPosition(logical);
        left = qMin(left, x);
        right = qMax(right, x + sectionSize(logical));
    }
    if (left >= right)
        return QRect();
    const int rowHeight = captionRowHeight();
    return QRect(left, band->level() * rowHeight, right - left, rowHeight);
}

bool BandHeaderView::coveredByOverlay(int logical) const
{
    // The table's own header has its frozen sections under the overlay,
    // whose header shows their bands; a band here spans only what scrolls.
    return m_owner->bandHeader() == this && m_owner->isColumnFrozen(logical)
        && !m_owner->frozenView()->isHidden();
}

QRect BandHeaderView::sectionRect(int logical) const
{
    if (!m_owner || logical < 0 || logical >= count() || isSectionHidden(logical))
        return QRect();
    const Column *column = m_owner->column(logical);
    const Band *parent = column ? column->parentBand() : nullptr;
    const int top = parent ? (parent->level() + 1) * captionRowHeight() : 0;
    return QRect(sectionViewportPosition(logical), top, sectionSize(logical),
                 qMax(viewport()->height(), sizeHint().height()) - top);
}

int BandHeaderView::bandAt(const QPoint &pos) const
{
    for (int b = 0; m_owner && b < m_owner->bandCount(); ++b) {
        if (bandRect(b).contains(pos))
            return b;
    }
    return -1;
}

QString BandHeaderView::columnCaption(int logical) const
{
    const Column *column = m_owner->column(logical);
    if (column && !column->caption().isEmpty())
        return column->caption();
    return model() ? model()->headerData(logical, Qt::Horizontal, Qt::DisplayRole).toString()
                   : QString();
}

void BandHeaderView::paintCaption(QPainter &painter, const QRect &rect, const QString &text,
                                  Qt::Alignment alignment, int sortArrow) const
{
    const GridTheme &theme = m_owner->theme();
    painter.fillRect(rect, theme.headerBase);
    painter.setPen(theme.headerLine);
    painter.drawLine(rect.topRight(), rect.bottomRight());
    painter.drawLine(rect.bottomLeft(), rect.bottomRight());

    QRect textRect = rect.adjusted(4, 1, -4, -1);
    if (sortArrow != 0) {
        // A small triangle at the right, up for ascending.
        const int size = 4;
        const QPoint c(textRect.right() - size, rect.center().y());
        QPolygon arrow;
        if (sortArrow > 0)
            arrow << QPoint(c.x() - size, c.y() + size / 2) << QPoint(c.x() + size, c.y() + size / 2)
                  << QPoint(c.x(), c.y() - size / 2 - 1);
        else
            arrow << QPoint(c.x() - size, c.y() - size / 2) << QPoint(c.x() + size, c.y() - size / 2)
                  << QPoint(c.x(), c.y() + size / 2 + 1);
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.link);
        painter.drawPolygon(arrow);
        painter.restore();
        textRect.adjust(0, 0, -(2 * size + 2), 0);
    }
    painter.setPen(theme.headerText);
    const QFontMetrics fm(painter.font());
    if (rect.height() >= 2 * captionRowHeight() && fm.horizontalAdvance(text) > textRect.width()) {
        painter.drawText(textRect, int(alignment) | Qt::TextWordWrap, text);
    } else {
        painter.drawText(textRect, int(alignment),
                         fm.elidedText(text, Qt::ElideRight, textRect.width()));
    }
}

void BandHeaderView::paintEvent(QPaintEvent *event)
{
    if (!m_owner) {
        QHeaderView::paintEvent(event);
        return;
    }
    QPainter painter(viewport());
    const GridTheme &theme = m_owner->theme();
    painter.fillRect(event->rect(), theme.headerBase);
    painter.setFont(m_owner->captionFont());

    int first = visualIndexAt(event->rect().left());
    int last = visualIndexAt(event->rect().right());
    if (first < 0)
        first = 0;
    if (last < 0)
        last = count() - 1;
    for (int visual = first; visual <= last; ++visual) {
        const int logical = logicalIndex(visual);
        if (logical < 0 || isSectionHidden(logical) || coveredByOverlay(logical))
            continue;
        const Column *column = m_owner->column(logical);
        Qt::Alignment alignment = column && column->textAlignment() ? column->textAlignment()
                                                                    : Qt::AlignCenter;
        alignment &= Qt::AlignHorizontal_Mask;
        int arrow = 0;
        if (isSortIndicatorShown() && sortIndicatorSection() == logical)
            arrow = sortIndicatorOrder() == Qt::AscendingOrder ? 1 : -1;
        paintCaption(painter, sectionRect(logical), columnCaption(logical),
                     alignment | Qt::AlignVCenter, arrow);
    }
    // Beside the frozen overlay, the main header's left part is covered.
    const int frozenLeft = m_owner->bandHeader() == this ? m_owner->frozenWidth() : 0;
    for (int b = 0; b < m_owner->bandCount(); ++b) {
        const QRect rect = bandRect(b);
        if (rect.isEmpty() || !rect.intersects(event->rect()))
            continue;
        // Band captions are centred over their columns, whatever the
        // alignment of the columns below.
        const Band *band = m_owner->band(b);
        Qt::Alignment alignment = band->textAlignment() ? band->textAlignment() : Qt::AlignCenter;
        paintCaption(painter, rect, QString(), alignment, 0);
        // The caption sits over the part of the band in sight, so that a band
        // half scrolled under the frozen columns can still be read.
        QRect seen = rect.intersected(QRect(frozenLeft, 0, viewport()->width() - frozenLeft,
                                            viewport()->height()));
        if (seen.width() < 24)
            seen = rect;
        const QRect textRect = seen.adjusted(4, 1, -4, -1);
        painter.setPen(theme.headerText);
        painter.drawText(textRect, int(alignment),
                         painter.fontMetrics().elidedText(band->caption(), Qt::ElideRight,
                                                          textRect.width()));
    }
    if (m_frozenEdge) {
        painter.setPen(theme.frozenEdge);
        const int x = viewport()->width() - 1;
        painter.drawLine(x, 0, x, viewport()->height());
    }
}

void BandHeaderView::mousePressEvent(QMouseEvent *event)
{
    const int logical = logicalIndexAt(event->pos());
    const QRect caption = sectionRect(logical);
    m_pressedOnBand = logical >= 0 && event->pos().y() < caption.top();
    QHeaderView::mousePressEvent(event);
}

bool BandHeaderView::viewportEvent(QEvent *event)
{
    if (m_owner && event->type() == QEvent::ToolTip) {
        // Narrow columns elide their captions; the tooltip gives them whole.
        auto *help = static_cast<QHelpEvent *>(event);
        const int band = bandAt(help->pos());
        const int logical = logicalIndexAt(help->pos());
        QString text;
        if (band >= 0)
            text = m_owner->band(band)->caption();
        else if (logical >= 0)
            text = columnCaption(logical);
        if (text.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), text, this);
        return true;
    }
    return QHeaderView::viewportEvent(event);
}

} // namespace BandGrid
