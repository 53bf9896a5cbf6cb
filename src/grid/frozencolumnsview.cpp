#include "frozencolumnsview.h"

#include "bandheaderview.h"
#include "tableview.h"

#include <QApplication>
#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

namespace BandGrid {

FrozenColumnsView::FrozenColumnsView(TableView *owner)
    : QTableView(owner)
    , m_owner(owner)
{
    setObjectName(QStringLiteral("frozenColumns"));
    auto *header = new BandHeaderView(owner, this);
    header->setFrozenEdge(true);
    setHorizontalHeader(header);
    verticalHeader()->hide();
    setFrameStyle(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    setShowGrid(false);
    setWordWrap(false);
    setEditTriggers(NoEditTriggers);
    setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_Hover);
}

BandHeaderView *FrozenColumnsView::bandHeader() const
{
    return static_cast<BandHeaderView *>(horizontalHeader());
}

void FrozenColumnsView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    // Rows follow the owner; sideways the overlay stays at its left edge.
    QTableView::scrollTo(index, hint);
    horizontalScrollBar()->setValue(0);
}

void FrozenColumnsView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    m_owner->paintGroupCaptions(this, event->rect());
    QPainter painter(viewport());
    painter.setPen(m_owner->theme().frozenEdge);
    const int x = viewport()->width() - 1;
    painter.drawLine(x, 0, x, viewport()->height());
}

void FrozenColumnsView::mousePressEvent(QMouseEvent *event)
{
    // Keys go to the owner, wherever the user clicked.
    m_owner->setFocus(Qt::MouseFocusReason);
    QTableView::mousePressEvent(event);
}

void FrozenColumnsView::mouseMoveEvent(QMouseEvent *event)
{
    QTableView::mouseMoveEvent(event);
    m_owner->updateHoverCursor(this, event->pos());
    m_owner->setHoveredRow(rowAt(event->pos().y()));
}

void FrozenColumnsView::wheelEvent(QWheelEvent *event)
{
    QApplication::sendEvent(m_owner->viewport(), event);
}

void FrozenColumnsView::keyPressEvent(QKeyEvent *event)
{
    QApplication::sendEvent(m_owner, event);
}

void FrozenColumnsView::contextMenuEvent(QContextMenuEvent *event)
{
    QApplication::sendEvent(m_owner->viewport(), event);
}

bool FrozenColumnsView::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Leave)
        m_owner->setHoveredRow(-1);
    return QTableView::viewportEvent(event);
}

} // namespace BandGrid
