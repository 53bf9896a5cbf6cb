#pragma once

#include "bandgrid_global.h"

#include <QColor>
#include <QPalette>

namespace BandGrid {

// The colours the grid paints with. Two ready sets, light and dark; a user
// may start from either and change single colours.
struct BANDGRID_EXPORT GridTheme
{
    QColor base;
    QColor alternateBase;
    QColor text;
    QColor gridLine;
    QColor headerBase;
    QColor headerText;
    QColor headerLine;
    QColor highlight;
    QColor highlightedText;
    QColor link;
    QColor linkVisited;
    // The row under the mouse, when the view highlights it.
    QColor hover;
    QColor groupBase;
    QColor groupText;
    QColor groupLine;
    QColor frozenEdge;
    QColor buttonBase;
    QColor buttonText;

    static GridTheme light();
    static GridTheme dark();

    // A widget palette that agrees with the theme, for scroll bars, frames
    // and anything the grid does not paint itself. Link cells take their
    // colours from its Link and LinkVisited roles, so that a user may set
    // those on the view's palette alone.
    QPalette palette(const QPalette &from = QPalette()) const;

    bool operator==(const GridTheme &other) const;
    bool operator!=(const GridTheme &other) const { return !(*this == other); }
};

} // namespace BandGrid
