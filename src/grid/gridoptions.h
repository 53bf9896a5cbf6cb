#pragma once

#include "bandgrid_global.h"

#include <QFont>
#include <QObject>
#include <QString>

namespace BandGrid {

// The texts the grid shows of its own: the context menu's entries and the
// status line's labels. English until the user gives others.
struct BANDGRID_EXPORT GridTexts
{
    QString copy = QStringLiteral("Copy");
    QString copyWithCaptions = QStringLiteral("Copy with captions");
    QString selectAll = QStringLiteral("Select all");
    QString count = QStringLiteral("Count");
    QString sum = QStringLiteral("Sum");
    QString average = QStringLiteral("Average");
    // Between the band captions and the column caption of a copied header.
    QString captionSeparator = QStringLiteral(" / ");

    bool operator==(const GridTexts &o) const
    {
        return copy == o.copy && copyWithCaptions == o.copyWithCaptions && selectAll == o.selectAll
            && count == o.count && sum == o.sum && average == o.average
            && captionSeparator == o.captionSeparator;
    }
    bool operator!=(const GridTexts &o) const { return !(*this == o); }
};

// The switches of a table view. Every setter that changes something emits
// changed(), and the view applies the whole set again.
class BANDGRID_EXPORT GridOptions : public QObject
{
    Q_OBJECT
public:
    explicit GridOptions(QObject *parent = nullptr);

    int borderWidth() const { return m_borderWidth; }
    void setBorderWidth(int width);

    bool isGroupingEnabled() const { return m_groupingEnabled; }
    void setGroupingEnabled(bool enabled);

    bool isColumnHidingOnGroupingEnabled() const { return m_hideGroupedColumn; }
    void setColumnHidingOnGroupingEnabled(bool enabled);

    bool isSortingEnabled() const { return m_sortingEnabled; }
    void setSortingEnabled(bool enabled);

    bool transparentBackground() const { return m_transparent; }
    void setTransparentBackground(bool transparent);

    bool alternatingRowColors() const { return m_alternating; }
    void setAlternatingRowColors(bool alternating);

    GridLines gridLines() const { return m_gridLines; }
    GridLineStyle gridLineStyle() const { return m_gridLineStyle; }
    void setGridLines(GridLines lines, GridLineStyle style = GridLineStyle::Solid);

    bool rubberBandSelection() const { return m_rubberBand; }
    void setRubberBandSelection(bool on);

    SelectionPolicy selectionPolicy() const { return m_selectionPolicy; }
    void setSelectionPolicy(SelectionPolicy policy);

    // Ctrl+wheel changes the zoom factor while zooming is enabled.
    bool isZoomEnabled() const { return m_zoomEnabled; }
    void setZoomEnabled(bool enabled);
    qreal zoomFactor() const { return m_zoomFactor; }
    void setZoomFactor(qreal factor);

    // Buttons in cells are drawn raised only under the mouse.
    bool cellButtonAutoRaise() const { return m_buttonAutoRaise; }
    void setCellButtonAutoRaise(bool on);

    // The font of the column and band captions; an unset font follows the view.
    QFont columnFont() const { return m_columnFont; }
    bool hasColumnFont() const { return m_hasColumnFont; }
    void setColumnFont(const QFont &font);

    // The row under the mouse is painted in the theme's hover colour.
    bool hoverHighlight() const { return m_hoverHighlight; }
    void setHoverHighlight(bool on);

    // A right click on a cell opens a menu: copy, copy with captions, select all.
    bool isContextMenuEnabled() const { return m_contextMenu; }
    void setContextMenuEnabled(bool enabled);

    GridTexts texts() const { return m_texts; }
    void setTexts(const GridTexts &texts);

signals:
    void changed();

private:
    template<typename T> void assign(T &member, const T &value);

    int m_borderWidth = 1;
    bool m_groupingEnabled = true;
    bool m_hideGroupedColumn = false;
    bool m_sortingEnabled = true;
    bool m_transparent = false;
    bool m_alternating = true;
    GridLines m_gridLines = AllLines;
    GridLineStyle m_gridLineStyle = GridLineStyle::Solid;
    bool m_rubberBand = false;
    SelectionPolicy m_selectionPolicy = SelectionPolicy::MultiRow;
    bool m_zoomEnabled = false;
    qreal m_zoomFactor = 1.0;
    bool m_buttonAutoRaise = true;
    QFont m_columnFont;
    bool m_hasColumnFont = false;
    bool m_hoverHighlight = false;
    bool m_contextMenu = false;
    GridTexts m_texts;
};

} // namespace BandGrid
