#pragma once

#include "bandgrid_global.h"

#include <QStyledItemDelegate>

namespace BandGrid {

class TableView;

// What a link cell shows and where it leads: "<a href='x'>y</a>" shows y
// and leads to x; any other text leads to itself.
struct BANDGRID_EXPORT LinkText
{
    QString shown;
    QString anchor;
    static LinkText parse(const QString &text);
};

// Paints every cell of a table view, and its group rows: text, links,
// cell buttons and grid lines, straight onto the painter without going
// through the style, so that a screen of cells stays cheap. What a cell is
// painted with (text, alignment, font, text colour, background) is decided
// once, in initStyleOption, and paint draws exactly that.
class BANDGRID_EXPORT CellDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit CellDelegate(TableView *owner);

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QWidget *createEditor(QWidget *, const QStyleOptionViewItem &, const QModelIndex &) const override
    {
        return nullptr;
    }

    // The text a cell shows, as painting and copying see it.
    QString shownText(const QModelIndex &index) const;

    // Fills in what the cell is painted with: the shown text; the model's
    // alignment, or the column's where the model gives none; the font; the
    // text colour in the palette's Text role (links in Link, or LinkVisited
    // once followed); the background (selection, hovered row, the model's
    // brush, alternate rows). Public, so that what a cell shows can be read.
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;

    // Hit areas within a cell's rectangle.
    QRect buttonRect(const QRect &cell, int button) const;
    QRect linkRect(const QRect &cell, const QModelIndex &index, const QFont &font) const;
    // The expander of a group row sits at the left edge of the viewport,
    // whatever the horizontal scroll, in the table and its frozen overlay alike.
    QRect expanderRect(const QRect &row) const;
    // The caption of a group row, across the row: expander, column caption,
    // value and count. Painted by the views over the cells' backgrounds.
    void paintGroupCaption(QPainter *painter, const QRect &row, const QModelIndex &index,
                           bool selected) const;
    // The button under a point of a cell, or -1.
    int buttonAt(const QRect &cell, const QModelIndex &index, const QPoint &pos) const;

protected:
    bool editorEvent(QEvent *event, QAbstractItemModel *model, const QStyleOptionViewItem &option,
                     const QModelIndex &index) override;

private:
    // initStyleOption's work; true for a group row.
    bool initCellOption(QStyleOptionViewItem *option, const QModelIndex &index) const;
    void paintGridLines(QPainter *painter, const QRect &rect) const;
    Qt::Alignment alignmentOf(const QModelIndex &index) const;
    QRect textRect(const QRect &cell, const QModelIndex &index) const;

    TableView *m_owner;
    QPersistentModelIndex m_pressed;
    int m_pressedButton = -1;
};

} // namespace BandGrid
