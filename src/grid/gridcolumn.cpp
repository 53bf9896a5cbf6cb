#include "gridcolumn.h"

#include "tableview.h"

#include <QHeaderView>

namespace BandGrid {

ColumnBase::ColumnBase(TableView *view, int index)
    : QObject(view)
    , m_view(view)
    , m_index(index)
{
}

void ColumnBase::notify()
{
    m_view->columnStateChanged();
}

void ColumnBase::setCaption(const QString &caption)
{
    if (m_caption == caption)
        return;
    m_caption = caption;
    notify();
}

void ColumnBase::setTextAlignment(Qt::Alignment alignment)
{
    if (m_alignment == alignment)
        return;
    m_alignment = alignment;
    notify();
}

Band *ColumnBase::parentBand() const
{
    return m_view->band(m_bandIndex);
}

bool ColumnBase::acceptsParent(const Band *) const
{
    return true;
}

bool ColumnBase::setBandIndex(int bandIndex)
{
    Band *band = m_view->band(bandIndex);
    if (bandIndex != -1 && (!band || !acceptsParent(band)))
        return false;
    if (m_bandIndex != bandIndex) {
        m_bandIndex = bandIndex;
        m_view->bandLayoutChanged();
    }
    return true;
}

// Bands

Band::Band(TableView *view, int index, const QString &caption)
    : ColumnBase(view, index)
{
    m_caption = caption;
    m_alignment = Qt::AlignCenter;
}

void Band::setVisible(bool visible)
{
    if (m_visible == visible)
        return;
    m_visible = visible;
    m_view->bandLayoutChanged();
}

bool Band::acceptsParent(const Band *band) const
{
    return band != this && !band->isDescendantOf(this);
}

bool Band::isShown() const
{
    if (!m_visible)
        return false;
    for (int c = 0; c < m_view->columnCount(); ++c) {
        const Column *column = m_view->column(c);
        const Band *parent = column->parentBand();
        if (parent && (parent == this || parent->isDescendantOf(this))
            && !m_view->horizontalHeader()->isSectionHidden(c))
            return true;
    }
    return false;
}

bool Band::isBottomBand() const
{
    for (int b = 0; b < m_view->bandCount(); ++b) {
        if (m_view->band(b)->parentBand() == this)
            return false;
    }
    return true;
}

bool Band::isDescendantOf(const Band *band) const
{
    // Walks up at most as many steps as there are bands, so that a cycle
    // could never hang it.
    const Band *up = parentBand();
    for (int steps = 0; up && steps <= m_view->bandCount(); ++steps) {
        if (up == band)
            return true;
        up = up->parentBand();
    }
    return false;
}

int Band::level() const
{
    int level = 0;
    for (const Band *up = parentBand(); up && level <= m_view->bandCount(); up = up->parentBand())
        ++level;
    return level;
}

// Columns

Column::Column(TableView *view, int index)
    : ColumnBase(view, index)
{
}

bool Column::isVisible() const
{
    return m_visible;
}

void Column::setVisible(bool visible)
{
    if (m_visible == visible)
        return;
    m_visible = visible;
    m_view->bandLayoutChanged();
}

int Column::width() const
{
    return m_width >= 0 ? m_width : m_view->horizontalHeader()->defaultSectionSize();
}

void Column::setWidth(int width)
{
    m_width = qMax(0, width);
    m_view->columnStateChanged();
}

void Column::setFixedKind(FixedKind kind)
{
    if (m_fixedKind == kind)
        return;
    m_fixedKind = kind;
    notify();
}

void Column::setEditorKind(EditorKind kind)
{
    if (m_editorKind == kind)
        return;
    m_editorKind = kind;
    notify();
}

int Column::addButton(const QIcon &icon, const QString &toolTip)
{
    m_buttons.append(Button{icon, toolTip});
    notify();
    return m_buttons.size() - 1;
}

QString Column::buttonToolTip(int button) const
{
    return button >= 0 && button < m_buttons.size() ? m_buttons.at(button).toolTip : QString();
}

QIcon Column::buttonIcon(int button) const
{
    return button >= 0 && button < m_buttons.size() ? m_buttons.at(button).icon : QIcon();
}

void Column::setSortRole(int role)
{
    m_sortRole = role;
}

void Column::setSortLocaleAware(bool on)
{
    m_sortLocaleAware = on;
}

int Column::groupIndex() const
{
    return m_view->groupColumn() == m_index ? 0 : -1;
}

void Column::setGroupIndex(int groupIndex)
{
    if (groupIndex >= 0)
        m_view->groupBy(m_index);
    else if (m_view->groupColumn() == m_index)
        m_view->groupBy(-1);
}

QVariant Column::value(int sourceRow, int role) const
{
    const QAbstractItemModel *model = m_view->sourceModel();
    return model ? model->index(sourceRow, m_index).data(role) : QVariant();
}

} // namespace BandGrid
