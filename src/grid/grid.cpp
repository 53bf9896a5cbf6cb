#include "grid.h"

#include "statusline.h"
#include "tableview.h"

#include <QVBoxLayout>

namespace BandGrid {

Grid::Grid(QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_status = new StatusLine(this);
    m_status->hide();
    layout->addWidget(m_status);
    setViewType(ViewType::Table);
    setTheme(m_theme);
}

Grid::~Grid() = default;

void Grid::setViewType(ViewType type)
{
    delete m_view;
    m_type = type;
    m_view = type == ViewType::BandedTable ? new BandedTableView(this) : new TableView(this);
    m_view->setTheme(m_theme);
    static_cast<QVBoxLayout *>(layout())->insertWidget(0, m_view);
    m_status->setView(m_view);
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
    QPalette palette = m_status->palette();
    palette.setColor(QPalette::Window, theme.headerBase);
    palette.setColor(QPalette::WindowText, theme.headerText);
    m_status->setPalette(palette);
}

bool Grid::isStatusLineVisible() const
{
    return !m_status->isHidden();
}

void Grid::setStatusLineVisible(bool visible)
{
    m_status->setVisible(visible);
}

} // namespace BandGrid
