#pragma once

#include "bandgrid_global.h"
#include "gridtheme.h"

#include <QWidget>

namespace BandGrid {

class BandedTableView;
class StatusLine;
class TableView;

// The grid control: a widget that holds one root view, plain or banded, and
// under it a status line of the selection, hidden until asked for.
// Changing the view type makes a new root view; the theme and the status
// line carry over.
class BANDGRID_EXPORT Grid : public QWidget
{
    Q_OBJECT
public:
    explicit Grid(QWidget *parent = nullptr);
    ~Grid() override;

    void setViewType(ViewType type);
    ViewType viewType() const { return m_type; }

    TableView *view() const { return m_view; }
    // The root view when it is banded, else null.
    BandedTableView *bandedView() const;

    GridTheme theme() const { return m_theme; }
    void setTheme(const GridTheme &theme);

    StatusLine *statusLine() const { return m_status; }
    bool isStatusLineVisible() const;
    void setStatusLineVisible(bool visible);

signals:
    void viewChanged(BandGrid::TableView *view);

private:
    ViewType m_type = ViewType::Table;
    TableView *m_view = nullptr;
    StatusLine *m_status = nullptr;
    GridTheme m_theme = GridTheme::light();
};

} // namespace BandGrid
