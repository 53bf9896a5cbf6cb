#pragma once

#include "bandgrid_global.h"
#include "gridtheme.h"

#include <QWidget>

namespace BandGrid {

class BandedTableView;
class TableView;

// The grid control: a widget that holds one root view, plain or banded.
// Changing the view type makes a new root view; the theme carries over.
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

signals:
    void viewChanged(BandGrid::TableView *view);

private:
    ViewType m_type = ViewType::Table;
    TableView *m_view = nullptr;
    GridTheme m_theme = GridTheme::light();
};

} // namespace BandGrid
