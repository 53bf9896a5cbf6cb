#include "gridoptions.h"

#include <QtGlobal>

namespace BandGrid {

GridOptions::GridOptions(QObject *parent)
    : QObject(parent)
{
}

template<typename T>
void GridOptions::assign(T &member, const T &value)
{
    if (member == value)
        return;
    member = value;
    emit changed();
}

void GridOptions::setBorderWidth(int width) { assign(m_borderWidth, qMax(0, width)); }
void GridOptions::setGroupingEnabled(bool enabled) { assign(m_groupingEnabled, enabled); }
void GridOptions::setColumnHidingOnGroupingEnabled(bool enabled) { assign(m_hideGroupedColumn, enabled); }
void GridOptions::setSortingEnabled(bool enabled) { assign(m_sortingEnabled, enabled); }
void GridOptions::setTransparentBackground(bool transparent) { assign(m_transparent, transparent); }
void GridOptions::setAlternatingRowColors(bool alternating) { assign(m_alternating, alternating); }
void GridOptions::setRubberBandSelection(bool on) { assign(m_rubberBand, on); }
void GridOptions::setSelectionPolicy(SelectionPolicy policy) { assign(m_selectionPolicy, policy); }
void GridOptions::setZoomEnabled(bool enabled) { assign(m_zoomEnabled, enabled); }
void GridOptions::setCellButtonAutoRaise(bool on) { assign(m_buttonAutoRaise, on); }
void GridOptions::setHoverHighlight(bool on) { assign(m_hoverHighlight, on); }
void GridOptions::setContextMenuEnabled(bool enabled) { assign(m_contextMenu, enabled); }
void GridOptions::setTexts(const GridTexts &texts) { assign(m_texts, texts); }

void GridOptions::setGridLines(GridLines lines, GridLineStyle style)
{
    if (m_gridLines == lines && m_gridLineStyle == style)
        return;
    m_gridLines = lines;
    m_gridLineStyle = style;
    emit changed();
}

void GridOptions::setZoomFactor(qreal factor)
{
    // Beyond these the captions and rows stop being readable.
    assign(m_zoomFactor, qBound<qreal>(0.5, factor, 3.0));
}

void GridOptions::setColumnFont(const QFont &font)
{
    if (m_hasColumnFont && m_columnFont == font)
        return;
    m_columnFont = font;
    m_hasColumnFont = true;
    emit changed();
}

} // namespace BandGrid
