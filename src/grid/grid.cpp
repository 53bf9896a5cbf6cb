#include "grid.h"

#include "tableview.h"

#include <QVBoxLayout>

namespace BandGrid {

Grid::Grid(QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    setViewType(ViewType::Table);
}

Grid::~Grid() = default;

void Grid::setViewType(ViewType type)
{
    delete m_view;
    m_type = type;
    m_view = type == ViewType::BandedTable ? new BandedTableView(this) : new TableView(this);
    m_view->setTheme(m_theme);
    layout()->addWidget(m_view);
    emit viewChanged(m_view);
}

BandedTableView *Grid::bandedView() const
{
    return m_type == ViewType::BandedTable ? static_cast<BandedTableView *>(m_view) : nullptr;
}

void Grid::setTheme(const GridTheme &theme)
{
    m_theme = theme;
    m_view->setTheme(theme);
}

} // namespace BandGrid
