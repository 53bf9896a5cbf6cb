#pragma once

#include <QtCore/qglobal.h>
#include <QtCore/qnamespace.h>

#if defined(BANDGRID_LIBRARY)
#  define BANDGRID_EXPORT Q_DECL_EXPORT
#else
#  define BANDGRID_EXPORT Q_DECL_IMPORT
#endif

namespace BandGrid {

// What the grid's root view is: a plain table, or a table whose columns stand
// under bands.
enum class ViewType { Table = 1, BandedTable = 2 };

// Columns of the Left kind stay put at the left edge while the rest scrolls.
enum class FixedKind { None = 0, Left = 1 };

// How a column's cells are shown: plain text, or a link that can be clicked.
enum class EditorKind { Text = 0, Link = 1 };

// Which grid lines the cells draw, and with what pen.
enum GridLine { NoLines = 0x0, HorizontalLines = 0x1, VerticalLines = 0x2, AllLines = 0x3 };
Q_DECLARE_FLAGS(GridLines, GridLine)
enum class GridLineStyle { Solid = 0, Dotted = 1 };

// What a click selects.
enum class SelectionPolicy {
    NoSelection = 0,
    SingleRow = 1,
    MultiRow = 2,
    SingleCell = 3,
    MultiCell = 4
};

// Roles the grid answers on its own rows, beside those of the user's model.
// They sit far above Qt::UserRole so that they never meet a model's own.
enum GridRole {
    GroupRowRole = Qt::UserRole + 0x4000, // bool: the row is a group row
    GroupCountRole,                       // int: rows in the group
    GroupExpandedRole,                    // bool: the group shows its rows
    SourceRowRole                         // int: row of the user's model, -1 for a group row
};

} // namespace BandGrid

Q_DECLARE_OPERATORS_FOR_FLAGS(BandGrid::GridLines)
