#include "celldelegate.h"

#include "gridcolumn.h"
#include "gridoptions.h"
#include "tableview.h"

#include <QMouseEvent>
#include <QPainter>
#include <QRegularExpression>

namespace BandGrid {

namespace {
const int kPadding = 4;
const int kButtonWidth = 18;
const int kExpanderWidth = 18;
}

LinkText LinkText::parse(const QString &text)
{
    static const QRegularExpression anchor(
        QStringLiteral("<a\\s[^>]*href\\s*=\\s*[\"']([^\"']*)[\"'][^>]*>(.*?)</a>"),
        QRegularExpression::CaseInsensitiveOption | QRegularExpression::DotMatchesEverythingOption);
    if (!text.contains(QLatin1Char('<')))
        return {text, text};
    const QRegularExpressionMatch match = anchor.match(text);
    if (!match.hasMatch())
        return {text, text};
    QString shown = text;
    shown.replace(match.capturedStart(0), match.capturedLength(0), match.captured(2));
    static const QRegularExpression tags(QStringLiteral("<[^>]*>"));
    shown.remove(tags);
    return {shown, match.captured(1)};
}

CellDelegate::CellDelegate(TableView *owner)
    : QStyledItemDelegate(owner)
    , m_owner(owner)
{
}

QString CellDelegate::shownText(const QModelIndex &index) const
{
    const QString text = index.data(Qt::DisplayRole).toString();
    const Column *column = m_owner->column(index.column());
    if (column && column->editorKind() == EditorKind::Link)
        return LinkText::parse(text).shown;
    return text;
}

Qt::Alignment CellDelegate::alignmentOf(const QModelIndex &index) const
{
    // The model knows its cells (numbers right, texts left, a configured
    // alignment); the column's alignment stands in where it says nothing.
    const QVariant fromModel = index.data(Qt::TextAlignmentRole);
    if (fromModel.isValid())
        return Qt::Alignment(fromModel.toInt());
    const Column *column = m_owner->column(index.column());
    if (column && column->textAlignment())
        return column->textAlignment();
    return Qt::AlignLeft | Qt::AlignVCenter;
}

QRect CellDelegate::buttonRect(const QRect &cell, int button) const
{
    const int right = cell.right() - 1 - button * kButtonWidth;
    return QRect(right - kButtonWidth + 1, cell.top() + 2, kButtonWidth - 2, cell.height() - 4);
}

QRect CellDelegate::expanderRect(const QRect &row) const
{
    return QRect(0, row.top(), kExpanderWidth, row.height());
}

QRect CellDelegate::textRect(const QRect &cell, const QModelIndex &index) const
{
    const Column *column = m_owner->column(index.column());
    const int buttons = column ? column->buttonCount() : 0;
    return cell.adjusted(kPadding, 0, -kPadding - buttons * kButtonWidth, 0);
}

QRect CellDelegate::linkRect(const QRect &cell, const QModelIndex &index, const QFont &font) const
{
    const QRect area = textRect(cell, index);
    const QFontMetrics fm(font);
    const QString shown = fm.elidedText(shownText(index), Qt::ElideRight, area.width());
    const QSize size(qMin(area.width(), fm.horizontalAdvance(shown)), fm.height());
    return QStyle::alignedRect(Qt::LeftToRight, alignmentOf(index), size, area);
}

int CellDelegate::buttonAt(const QRect &cell, const QModelIndex &index, const QPoint &pos) const
{
    const Column *column = m_owner->column(index.column());
    if (!column || index.data(GroupRowRole).toBool())
        return -1;
    for (int b = 0; b < column->buttonCount(); ++b) {
        if (buttonRect(cell, b).contains(pos))
            return b;
    }
    return -1;
}

void CellDelegate::paintGridLines(QPainter *painter, const QRect &rect) const
{
    const GridOptions *options = m_owner->options();
    const GridLines lines = options->gridLines();
    if (lines == NoLines)
        return;
    QPen pen(m_owner->theme().gridLine, 0,
             options->gridLineStyle() == GridLineStyle::Dotted ? Qt::DotLine : Qt::SolidLine);
    painter->setPen(pen);
    if (lines & HorizontalLines)
        painter->drawLine(rect.bottomLeft(), rect.bottomRight());
    if (lines & VerticalLines)
        painter->drawLine(rect.topRight(), rect.bottomRight());
}

void CellDelegate::paintGroupCaption(QPainter *painter, const QRect &row, const QModelIndex &index,
                                     bool selected) const
{
    const GridTheme &theme = m_owner->theme();
    // The expander: a triangle pointing down when open, right when shut.
    const bool expanded = index.data(GroupExpandedRole).toBool();
    const QRect box = expanderRect(row);
    const QPointF c = QRectF(box).center();
    const qreal s = 3.5;
    QPolygonF arrow;
    if (expanded)
        arrow << QPointF(c.x() - s, c.y() - s / 2) << QPointF(c.x() + s, c.y() - s / 2)
              << QPointF(c.x(), c.y() + s);
    else
        arrow << QPointF(c.x() - s / 2, c.y() - s) << QPointF(c.x() - s / 2, c.y() + s)
              << QPointF(c.x() + s, c.y());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(selected ? theme.highlightedText : theme.groupText);
    painter->drawPolygon(arrow);
    painter->restore();

    QFont font = m_owner->cellFont();
    font.setBold(true);
    painter->setFont(font);
    painter->setPen(selected ? theme.highlightedText : theme.groupText);
    const QString text = m_owner->groupCaption(index.row());
    const QRect textArea = row.adjusted(kExpanderWidth + 2, 0, -kPadding, -1);
    painter->drawText(textArea, Qt::AlignLeft | Qt::AlignVCenter,
                      QFontMetrics(font).elidedText(text, Qt::ElideRight, textArea.width()));
}

void CellDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    initCellOption(option, index);
}

bool CellDelegate::initCellOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    const GridTheme &theme = m_owner->theme();
    const bool selected = option->state & QStyle::State_Selected;
    option->index = index;
    if (index.data(GroupRowRole).toBool()) {
        // Only the background: the caption runs across all cells of the row
        // and is painted by the view afterwards.
        option->text.clear();
        option->features &= ~QStyleOptionViewItem::HasDisplay;
        option->backgroundBrush = selected ? theme.highlight : theme.groupBase;
        return true;
    }

    const Column *column = m_owner->column(index.column());
    const bool link = column && column->editorKind() == EditorKind::Link;
    const QString raw = index.data(Qt::DisplayRole).toString();
    const LinkText linkText = link ? LinkText::parse(raw) : LinkText{raw, QString()};
    option->text = linkText.shown;
    option->features |= QStyleOptionViewItem::HasDisplay;
    option->displayAlignment = alignmentOf(index);

    QFont font = m_owner->cellFont();
    const QVariant modelFont = index.data(Qt::FontRole);
    if (modelFont.isValid())
        font = modelFont.value<QFont>();
    if (link)
        font.setUnderline(true);
    option->font = font;

    QColor color = theme.text;
    if (link) {
        color = option->palette.color(m_owner->isLinkVisited(linkText.anchor) ? QPalette::LinkVisited
                                                                              : QPalette::Link);
    } else if (selected) {
        color = theme.highlightedText;
    } else {
        const QVariant foreground = index.data(Qt::ForegroundRole);
        if (foreground.isValid())
            color = foreground.canConvert<QColor>() ? foreground.value<QColor>()
                                                    : foreground.value<QBrush>().color();
    }
    if (option->palette.color(QPalette::Text) != color)
        option->palette.setColor(QPalette::Text, color);

    QBrush background;
    if (selected) {
        background = theme.highlight;
    } else if (m_owner->options()->hoverHighlight() && index.row() == m_owner->hoveredRow()) {
        background = theme.hover;
    } else {
        const QVariant brush = index.data(Qt::BackgroundRole);
        if (brush.canConvert<QBrush>() && brush.value<QBrush>().style() != Qt::NoBrush)
            background = brush.value<QBrush>();
        else if ((option->features & QStyleOptionViewItem::Alternate)
                 && m_owner->options()->alternatingRowColors())
            background = theme.alternateBase;
    }
    option->backgroundBrush = background;
    return false;
}

void CellDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                         const QModelIndex &index) const
{
    // Under the frozen overlay the table's own cells are never seen; the
    // overlay paints them.
    if (option.widget == m_owner && m_owner->isColumnFrozen(index.column())
        && !m_owner->frozenView()->isHidden())
        return;
    QStyleOptionViewItem cell = option;
    const bool group = initCellOption(&cell, index);
    const GridTheme &theme = m_owner->theme();
    const GridOptions *options = m_owner->options();
    const QRect rect = cell.rect;
    if (cell.backgroundBrush.style() != Qt::NoBrush)
        painter->fillRect(rect, cell.backgroundBrush);
    if (group) {
        painter->setPen(theme.groupLine);
        painter->drawLine(rect.bottomLeft(), rect.bottomRight());
        return;
    }
    paintGridLines(painter, rect);

    const Column *column = m_owner->column(index.column());
    const QRect area = textRect(rect, index);
    painter->setFont(cell.font);
    painter->setPen(cell.palette.color(QPalette::Text));
    painter->drawText(area, int(cell.displayAlignment),
                      painter->fontMetrics().elidedText(cell.text, Qt::ElideRight, area.width()));

    if ((option.state & QStyle::State_HasFocus)
        && m_owner->selectionBehavior() == QAbstractItemView::SelectItems) {
        // The current cell, for the keyboard's sake, when cells are selected one by one.
        painter->setPen(theme.link);
        painter->drawRect(rect.adjusted(0, 0, -1, -1));
    }

    if (column && column->buttonCount() > 0) {
        const bool hovered = option.state & QStyle::State_MouseOver;
        for (int b = 0; b < column->buttonCount(); ++b) {
            const QRect box = buttonRect(rect, b);
            if (hovered || !options->cellButtonAutoRaise()) {
                painter->fillRect(box, theme.buttonBase);
                painter->setPen(theme.headerLine);
                painter->drawRect(box.adjusted(0, 0, -1, -1));
            }
            const QIcon icon = column->buttonIcon(b);
            if (!icon.isNull()) {
                icon.paint(painter, box.adjusted(2, 2, -2, -2));
            } else {
                painter->setPen(theme.buttonText);
                painter->drawText(box, Qt::AlignCenter, QStringLiteral("\u2026"));
            }
        }
    }
}

QSize CellDelegate::sizeHint(const QStyleOptionViewItem &, const QModelIndex &index) const
{
    const QFontMetrics fm(m_owner->cellFont());
    const Column *column = m_owner->column(index.column());
    const int buttons = column ? column->buttonCount() : 0;
    return QSize(fm.horizontalAdvance(shownText(index)) + 2 * kPadding + buttons * kButtonWidth,
                 m_owner->rowHeight());
}

bool CellDelegate::editorEvent(QEvent *event, QAbstractItemModel *, const QStyleOptionViewItem &option,
                               const QModelIndex &index)
{
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonRelease
        && event->type() != QEvent::MouseButtonDblClick)
        return false;
    auto *mouse = static_cast<QMouseEvent *>(event);
    if (mouse->button() != Qt::LeftButton)
        return false;

    if (index.data(GroupRowRole).toBool()) {
        // A click on the expander, or a double click anywhere, opens or
        // shuts the group.
        const bool onExpander = expanderRect(option.rect).contains(mouse->pos());
        if ((event->type() == QEvent::MouseButtonPress && onExpander)
            || event->type() == QEvent::MouseButtonDblClick) {
            m_owner->toggleGroupAt(index.row());
            return true;
        }
        return false;
    }

    const Column *column = m_owner->column(index.column());
    if (!column)
        return false;
    const int button = buttonAt(option.rect, index, mouse->pos());
    if (event->type() == QEvent::MouseButtonPress) {
        m_pressed = index;
        m_pressedButton = button;
        return button >= 0; // a button press does not move the selection
    }
    if (event->type() == QEvent::MouseButtonRelease) {
        const bool samePlace = m_pressed == index;
        const int pressedButton = m_pressedButton;
        m_pressed = QPersistentModelIndex();
        m_pressedButton = -1;
        if (!samePlace)
            return false;
        if (button >= 0 && button == pressedButton) {
            m_owner->reportButtonClick(index, button);
            return true;
        }
        if (column->editorKind() == EditorKind::Link && pressedButton < 0
            && linkRect(option.rect, index, m_owner->cellFont()).contains(mouse->pos())) {
            m_owner->reportLinkClick(index, LinkText::parse(index.data().toString()).anchor);
            return false;
        }
    }
    return false;
}

} // namespace BandGrid
