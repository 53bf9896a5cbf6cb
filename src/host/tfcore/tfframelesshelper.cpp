#include "tfcore/tfframelesshelper.h"

#include <QEvent>
#include <QHoverEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QWidget>

namespace {

enum Edge { NoEdge = 0, Left = 1, Right = 2, Top = 4, Bottom = 8 };
constexpr int edgeWidth = 5;

int edgesAt(const QWidget *window, const QPoint &pos)
{
    int edges = NoEdge;
    if (pos.x() < edgeWidth)
        edges |= Left;
    else if (pos.x() >= window->width() - edgeWidth)
        edges |= Right;
    if (pos.y() < edgeWidth)
        edges |= Top;
    else if (pos.y() >= window->height() - edgeWidth)
        edges |= Bottom;
    return edges;
}

Qt::CursorShape cursorFor(int edges)
{
    if ((edges & Left && edges & Top) || (edges & Right && edges & Bottom))
        return Qt::SizeFDiagCursor;
    if ((edges & Right && edges & Top) || (edges & Left && edges & Bottom))
        return Qt::SizeBDiagCursor;
    if (edges & (Left | Right))
        return Qt::SizeHorCursor;
    if (edges & (Top | Bottom))
        return Qt::SizeVerCursor;
    return Qt::ArrowCursor;
}

} // namespace

class TFFramelessHelperPrivate
{
public:
    QPointer<QWidget> window;
    bool movable = true;
    int titleHeight = 30;
    bool resizable = false;

    bool dragging = false;
    QPoint dragOffset;          // cursor position relative to the window's origin
    int resizeEdges = NoEdge;
    QRect pressGeometry;
    QPoint pressGlobal;

    void resizeTo(const QPoint &global);
};

void TFFramelessHelperPrivate::resizeTo(const QPoint &global)
{
    const QPoint delta = global - pressGlobal;
    QRect geometry = pressGeometry;
    const QSize minimum = window->minimumSize().expandedTo(QSize(2 * edgeWidth, 2 * edgeWidth));
    if (resizeEdges & Left)
        geometry.setLeft(qMin(geometry.left() + delta.x(), geometry.right() - minimum.width() + 1));
    if (resizeEdges & Right)
        geometry.setRight(qMax(geometry.right() + delta.x(), geometry.left() + minimum.width() - 1));
    if (resizeEdges & Top)
        geometry.setTop(qMin(geometry.top() + delta.y(), geometry.bottom() - minimum.height() + 1));
    if (resizeEdges & Bottom)
        geometry.setBottom(qMax(geometry.bottom() + delta.y(), geometry.top() + minimum.height() - 1));
    window->setGeometry(geometry);
}

TFFramelessHelper::TFFramelessHelper(QObject *parent)
    : QObject(parent)
    , d(new TFFramelessHelperPrivate)
{
}

TFFramelessHelper::~TFFramelessHelper()
{
    if (d->window)
        d->window->removeEventFilter(this);
    delete d;
}

void TFFramelessHelper::activateOn(QWidget *window)
{
    if (!window || d->window == window)
        return;
    if (d->window)
        d->window->removeEventFilter(this);
    d->window = window;
    // Hover events tell the cursor shape at the edges without a button held.
    window->setAttribute(Qt::WA_Hover, true);
    window->setMouseTracking(true);
    window->installEventFilter(this);
}

void TFFramelessHelper::setWidgetMovable(bool movable, int titleHeight)
{
    d->movable = movable;
    d->titleHeight = titleHeight;
}

void TFFramelessHelper::setWidgetResizable(bool resizable)
{
    d->resizable = resizable;
}

bool TFFramelessHelper::eventFilter(QObject *watched, QEvent *event)
{
    QWidget *window = d->window;
    if (!window || watched != window || window->isMaximized() || window->isFullScreen())
        return QObject::eventFilter(watched, event);

    switch (event->type()) {
    case QEvent::HoverMove:
        if (d->resizable && !d->dragging && d->resizeEdges == NoEdge) {
            const auto *hover = static_cast<QHoverEvent *>(event);
            const int edges = edgesAt(window, hover->pos());
            if (edges == NoEdge)
                window->unsetCursor();
            else
                window->setCursor(cursorFor(edges));
        }
        break;
    case QEvent::MouseButtonPress: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        if (mouse->button() != Qt::LeftButton)
            break;
        const int edges = d->resizable ? edgesAt(window, mouse->pos()) : int(NoEdge);
        if (edges != NoEdge) {
            d->resizeEdges = edges;
            d->pressGeometry = window->geometry();
            d->pressGlobal = mouse->globalPos();
            return true;
        }
        if (d->movable && mouse->pos().y() < d->titleHeight) {
            d->dragging = true;
            d->dragOffset = mouse->globalPos() - window->frameGeometry().topLeft();
            return true;
        }
        break;
    }
    case QEvent::MouseMove: {
        auto *mouse = static_cast<QMouseEvent *>(event);
        if (d->resizeEdges != NoEdge) {
            d->resizeTo(mouse->globalPos());
            return true;
        }
        if (d->dragging) {
            window->move(mouse->globalPos() - d->dragOffset);
            return true;
        }
        break;
    }
    case QEvent::MouseButtonRelease:
        if (d->dragging || d->resizeEdges != NoEdge) {
            d->dragging = false;
            d->resizeEdges = NoEdge;
            return true;
        }
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}
