#pragma once

#include "bandgrid_global.h"
#include "gridtheme.h"

#include <QTableView>

#include <memory>

class QMenu;

namespace BandGrid {

class Band;
class BandHeaderView;
class CellDelegate;
class Column;
class GridOptions;
class TableViewPrivate;

// What the selected cells hold: how many there are, and the count and sum
// of those whose sort role holds a number.
struct BANDGRID_EXPORT SelectionSummary
{
    int count = 0;
    int numbers = 0;
    double sum = 0;
    double average() const { return numbers > 0 ? sum / numbers : 0; }
};

// A table over the user's model. Between the model and the screen sit a
// sorting proxy and a grouping proxy; rows in signals and in the column
// interface are rows of the user's model ("source rows"), rows of the
// screen are "view rows".
//
// Leading columns of the Left fixed kind stay at the left edge while the
// rest scrolls: an overlay table over the same proxies, selection and
// header bands is kept in step with this one.
class BANDGRID_EXPORT TableView : public QTableView
{
    Q_OBJECT
public:
    explicit TableView(QWidget *parent = nullptr);
    ~TableView() override;

    // The user's model; the view shows it through its own proxies.
    void setModel(QAbstractItemModel *model) override;
    QAbstractItemModel *sourceModel() const;

    // Columns of the model; null for an index that names none.
    int columnCount() const;
    Column *column(int index) const;
    Column *columnByCaption(const QString &caption) const;

    // Bands; a plain table has none (see BandedTableView).
    int bandCount() const;
    Band *band(int index) const;
    // Rows of band captions above the column captions.
    int bandRowCount() const;

    GridOptions *options() const;
    const GridTheme &theme() const;
    void setTheme(const GridTheme &theme);

    // Fonts after the zoom factor: of the cells, and of the captions.
    QFont cellFont() const;
    QFont captionFont() const;
    int rowHeight() const;

    BandHeaderView *bandHeader() const;
    // The overlay that holds the frozen columns; hidden when there are none.
    QTableView *frozenView() const;
    int frozenColumnCount() const;
    bool isColumnFrozen(int column) const;
    int frozenWidth() const;
    // The viewport a column's cells are shown in, and a cell's rectangle there.
    QWidget *viewportOf(int column) const;
    QRect cellRect(int viewRow, int column) const;

    int sourceRow(int viewRow) const;
    int viewRow(int sourceRow) const;
    int viewRowCount() const;
    // The source row of the current cell, -1 for none or a group row.
    int focusedRow() const;
    void setFocusedRow(int sourceRow, int column = 0);
    void deselectAll();

    // Sorting, by the column's sort role; a click on a caption does the same.
    void sortBy(int column, Qt::SortOrder order);
    int sortColumn() const;
    Qt::SortOrder sortOrder() const;
    void setSortLocale(const QLocale &locale);
    QLocale sortLocale() const;

    // Grouping by one column; -1 ends it.
    void groupBy(int column);
    int groupColumn() const;
    int groupCount() const;
    bool isGroupRow(int viewRow) const;
    bool isGroupExpanded(int group) const;
    void setGroupExpanded(int group, bool expanded);
    void toggleGroupAt(int viewRow);
    void expandAll();
    void collapseAll();
    QString groupCaption(int viewRow) const;

    // The selected cells as text: tab between columns, new line between rows;
    // with captions, a first line of each column's caption path.
    QString selectedText(bool withCaptions = false) const;
    void copySelection() const;
    void copySelectionWithCaptions() const;
    // A column's caption under the captions of the bands above it, from the
    // top, joined by the texts' caption separator; empty band captions are
    // left out.
    QString captionPath(int column) const;
    // Count, and count and sum of numbers read from each column's sort role,
    // over the selected cells of visible columns and data rows.
    SelectionSummary selectionSummary() const;

    // The menu a right click on a cell opens; the caller owns it.
    QMenu *createContextMenu(QWidget *parent = nullptr);

    // The view row under the mouse, or -1.
    int hoveredRow() const;
    // A link that has been followed in this view is painted in LinkVisited.
    bool isLinkVisited(const QString &anchor) const;

    // Called by the cell delegate.
    void reportLinkClick(const QModelIndex &viewIndex, const QString &anchor);
    void reportButtonClick(const QModelIndex &viewIndex, int button);

signals:
    void focusRowChanged(int previousRow, int currentRow);
    void linkActivated(const QString &anchor, const QModelIndex &sourceIndex);
    void cellButtonClicked(int sourceRow, int column, int button);
    void sortChanged(int column, Qt::SortOrder order);
    void groupExpandedChanged(int group, bool expanded);

protected:
    QModelIndex moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers) override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;
    void updateGeometries() override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

    Band *createBand(const QString &caption);

private:
    friend class ColumnBase;
    friend class Column;
    friend class Band;
    friend class TableViewPrivate;
    friend class FrozenColumnsView;
    void columnStateChanged();
    void updateHoverCursor(QAbstractItemView *view, const QPoint &pos);
    void setHoveredRow(int viewRow);
    void paintGroupCaptions(QTableView *view, const QRect &region);
    void bandLayoutChanged();
    std::unique_ptr<TableViewPrivate> d;
};

// A table whose columns stand under bands, nested to any depth.
class BANDGRID_EXPORT BandedTableView : public TableView
{
    Q_OBJECT
public:
    explicit BandedTableView(QWidget *parent = nullptr);
    // Bands are numbered in the order they are made.
    Band *addBand(const QString &caption);
};

} // namespace BandGrid
