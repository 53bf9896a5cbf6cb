#include "tfcore/tfviewscrollbarexpand.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QScrollBar>

namespace {

constexpr int collapsedWidth = 6;
constexpr int expandedWidth = 12;
const char *const baseSheetProperty = "_tf_baseStyleSheet";

void setExtent(QScrollBar *bar, int extent)
{
    if (!bar->property(baseSheetProperty).isValid())
        bar->setProperty(baseSheetProperty, bar->styleSheet());
    const QString base = bar->property(baseSheetProperty).toString();
    const QString rule = bar->orientation() == Qt::Vertical
            ? QStringLiteral("QScrollBar:vertical{width:%1px;}").arg(extent)
            : QStringLiteral("QScrollBar:horizontal{height:%1px;}").arg(extent);
    bar->setStyleSheet(base + rule);
    bar->setProperty("expanded", extent == expandedWidth);
}

} // namespace

// Thin scroll bars keep the table's columns in view; they widen under the
// mouse so they stay easy to hit.
TFViewScrollbarExpand::TFViewScrollbarExpand(QAbstractItemView *view, QObject *parent)
    : QObject(parent)
    , m_view(view)
{
    if (!m_view)
        return;
    m_view->installEventFilter(this);
    setExtent(m_view->verticalScrollBar(), collapsedWidth);
    setExtent(m_view->horizontalScrollBar(), collapsedWidth);
    connect(m_view, &QObject::destroyed, this, [this] { m_view = nullptr; });
}

bool TFViewScrollbarExpand::eventFilter(QObject *watched, QEvent *event)
{
    if (m_view && watched == m_view) {
        if (event->type() == QEvent::Enter) {
            setExtent(m_view->verticalScrollBar(), expandedWidth);
            setExtent(m_view->horizontalScrollBar(), expandedWidth);
        } else if (event->type() == QEvent::Leave) {
            setExtent(m_view->verticalScrollBar(), collapsedWidth);
            setExtent(m_view->horizontalScrollBar(), collapsedWidth);
        }
    }
    return QObject::eventFilter(watched, event);
}
