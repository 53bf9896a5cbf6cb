#include "tableview.h"

#include "bandheaderview.h"
#include "celldelegate.h"
#include "frozencolumnsview.h"
#include "gridcolumn.h"
#include "gridoptions.h"
#include "groupproxymodel.h"
#include "sortproxymodel.h"

#include <QApplication>
#include <QClipboard>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QContextMenuEvent>
#include <QMenu>
#include <QSet>
#include <QPainter>
#include <QPointer>
#include <QRubberBand>
#include <QScrollBar>
#include <QToolTip>
#include <QtDebug>

#include <map>
#include <set>

namespace BandGrid {

class TableViewPrivate
{
public:
    explicit TableViewPrivate(TableView *view) : q(view) {}

    void ensureColumns();
    void applyColumnState();
    void applyOptions();
    void applyMetrics();
    void updateFrozenGeometry();
    void paintGroupCaptions(QTableView *view, const QRect &region);
    void onModelReset();
    void onHeaderClicked(BandHeaderView *header, int logical);
    void onSectionResized(int logical, int newSize);
    void onCurrentRowChanged(const QModelIndex &current);
    bool hiddenByBand(const Column *column) const;
    bool isFrozen(int column) const;
    int frozenCount() const;
    void applyFrozenOrder();
    void updateHoveredRows(int previous, int current);
    QModelIndex toSource(const QModelIndex &viewIndex) const;

    TableView *q;
    QPointer<QAbstractItemModel> source;
    SortProxyModel *sort = nullptr;
    GroupProxyModel *groups = nullptr;
    GridOptions *options = nullptr;
    GridTheme theme = GridTheme::light();
    CellDelegate *delegate = nullptr;
    BandHeaderView *header = nullptr;
    FrozenColumnsView *frozen = nullptr;
    QVector<Column *> columns;
    QVector<Band *> bands;
    QLocale sortLocale;
    QRubberBand *rubberBand = nullptr;
    QPoint rubberOrigin;
    int lastFocusRow = -1;
    int hoverRow = -1;
    QSet<QString> visitedLinks;
    int applying = 0;
};

void TableViewPrivate::ensureColumns()
{
    const int count = groups->columnCount();
    while (columns.size() < count)
        columns.append(new Column(q, columns.size()));
    while (columns.size() > count)
        delete columns.takeLast();
}

bool TableViewPrivate::hiddenByBand(const Column *column) const
{
    int steps = 0;
    for (const Band *band = column->parentBand(); band && steps <= bands.size();
         band = band->parentBand(), ++steps) {
        if (!band->isVisible())
            return true;
    }
    return false;
}

bool TableViewPrivate::isFrozen(int column) const
{
    return column >= 0 && column < columns.size() && columns.at(column)->fixedKind() == FixedKind::Left;
}

int TableViewPrivate::frozenCount() const
{
    int count = 0;
    for (const Column *column : columns)
        count += column->fixedKind() == FixedKind::Left ? 1 : 0;
    return count;
}

void TableViewPrivate::applyFrozenOrder()
{
    // Frozen columns come first on screen, in the model's order, then the
    // others, also in the model's order: the overlay then shows one run at
    // the left edge, and the table scrolls the rest beneath it.
    QVector<int> order;
    order.reserve(columns.size());
    for (int c = 0; c < columns.size(); ++c) {
        if (isFrozen(c))
            order.append(c);
    }
    for (int c = 0; c < columns.size(); ++c) {
        if (!isFrozen(c))
            order.append(c);
    }
    for (QHeaderView *header : {static_cast<QHeaderView *>(this->header),
                                static_cast<QHeaderView *>(frozen->bandHeader())}) {
        if (header->count() != order.size())
            continue;
        for (int visual = 0; visual < order.size(); ++visual) {
            if (header->logicalIndex(visual) != order.at(visual))
                header->moveSection(header->visualIndex(order.at(visual)), visual);
        }
    }
}

void TableViewPrivate::updateHoveredRows(int previous, int current)
{
    for (QTableView *view : {static_cast<QTableView *>(q), static_cast<QTableView *>(frozen)}) {
        QWidget *port = view->viewport();
        for (int row : {previous, current}) {
            if (row >= 0)
                port->update(QRect(0, view->rowViewportPosition(row), port->width(), view->rowHeight(row)));
        }
    }
}

void TableViewPrivate::applyColumnState()
{
    ++applying;
    applyFrozenOrder();
    const int grouped = groups->groupColumn();
    for (int c = 0; c < columns.size(); ++c) {
        const Column *column = columns.at(c);
        const bool hidden = !column->isVisible() || hiddenByBand(column)
            || (c == grouped && options->isColumnHidingOnGroupingEnabled());
        q->setColumnHidden(c, hidden);
        frozen->setColumnHidden(c, hidden || !isFrozen(c));
        if (!hidden) {
            q->setColumnWidth(c, column->width());
            frozen->setColumnWidth(c, column->width());
        }
    }
    --applying;
    header->updateGeometry();
    frozen->bandHeader()->updateGeometry();
    q->updateGeometries();
    frozen->relayout();
    updateFrozenGeometry();
    header->viewport()->update();
    frozen->bandHeader()->viewport()->update();
    q->viewport()->update();
    frozen->viewport()->update();
}

void TableViewPrivate::updateFrozenGeometry()
{
    const int width = q->frozenWidth();
    if (width <= 0 || columns.isEmpty()) {
        frozen->hide();
        return;
    }
    const QRect viewportRect = q->viewport()->geometry();
    const int top = q->horizontalHeader()->isVisible() ? q->horizontalHeader()->geometry().top()
                                                       : viewportRect.top();
    frozen->setGeometry(viewportRect.left(), top, qMin(width, viewportRect.width()),
                        viewportRect.bottom() - top + 1);
    frozen->show();
    frozen->verticalScrollBar()->setValue(q->verticalScrollBar()->value());
}

void TableViewPrivate::paintGroupCaptions(QTableView *view, const QRect &region)
{
    if (groups->groupColumn() < 0 || !view->isVisible())
        return;
    const int rows = groups->rowCount();
    int first = view->rowAt(region.top());
    int last = view->rowAt(region.bottom());
    if (first < 0)
        return;
    if (last < 0)
        last = rows - 1;
    QPainter painter(view->viewport());
    painter.setClipRect(region);
    // The table's own width for both, so that the overlay lays the caption
    // out exactly as the table does and shows the same pixels.
    const int width = q->viewport()->width();
    for (int row = first; row <= last; ++row) {
        if (!groups->isGroupRow(row))
            continue;
        // Viewport coordinates, not scrolled: the table and its frozen
        // overlay draw the same pixels where they meet.
        const QRect rect(0, view->rowViewportPosition(row), width, view->rowHeight(row));
        const QModelIndex index = groups->index(row, 0);
        delegate->paintGroupCaption(&painter, rect, index, q->selectionModel()->isSelected(index));
    }
}

void TableViewPrivate::applyMetrics()
{
    const int height = q->rowHeight();
    for (QTableView *view : {static_cast<QTableView *>(q), static_cast<QTableView *>(frozen)}) {
        view->verticalHeader()->setMinimumSectionSize(qMin(height, 12));
        view->verticalHeader()->setDefaultSectionSize(height);
        view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    }
    applyColumnState();
}

void TableViewPrivate::applyOptions()
{
    const int border = options->borderWidth();
    q->setFrameShape(border > 0 ? QFrame::Box : QFrame::NoFrame);
    q->setFrameShadow(QFrame::Plain);
    q->setLineWidth(border);

    const bool transparent = options->transparentBackground();
    for (QTableView *view : {static_cast<QTableView *>(q), static_cast<QTableView *>(frozen)}) {
        view->setAlternatingRowColors(options->alternatingRowColors());
        // The frozen overlay stands over the table's own first columns: it
        // always paints its background, or both texts would show at once.
        view->viewport()->setAutoFillBackground(!transparent || view == frozen);
        switch (options->selectionPolicy()) {
        case SelectionPolicy::NoSelection:
            view->setSelectionMode(QAbstractItemView::NoSelection);
            break;
        case SelectionPolicy::SingleRow:
            view->setSelectionBehavior(QAbstractItemView::SelectRows);
            view->setSelectionMode(QAbstractItemView::SingleSelection);
            break;
        case SelectionPolicy::MultiRow:
            view->setSelectionBehavior(QAbstractItemView::SelectRows);
            view->setSelectionMode(QAbstractItemView::ExtendedSelection);
            break;
        case SelectionPolicy::SingleCell:
            view->setSelectionBehavior(QAbstractItemView::SelectItems);
            view->setSelectionMode(QAbstractItemView::SingleSelection);
            break;
        case SelectionPolicy::MultiCell:
            view->setSelectionBehavior(QAbstractItemView::SelectItems);
            view->setSelectionMode(QAbstractItemView::ExtendedSelection);
            break;
        }
    }
    if (!options->isGroupingEnabled() && groups->groupColumn() >= 0)
        groups->setGroupColumn(-1);
    if (!options->isSortingEnabled()) {
        header->setSortIndicatorShown(false);
        frozen->bandHeader()->setSortIndicatorShown(false);
    }
    applyMetrics();
}

void TableViewPrivate::onModelReset()
{
    ensureColumns();
    lastFocusRow = -1;
    hoverRow = -1;
    applyColumnState();
}

QModelIndex TableViewPrivate::toSource(const QModelIndex &viewIndex) const
{
    return sort->mapToSource(groups->mapToSource(viewIndex));
}

void TableViewPrivate::onHeaderClicked(BandHeaderView *clicked, int logical)
{
    if (!options->isSortingEnabled() || clicked->pressedOnBand())
        return;
    const Qt::SortOrder order = sort->sortColumn() == logical && sort->sortOrder() == Qt::AscendingOrder
        ? Qt::DescendingOrder
        : Qt::AscendingOrder;
    q->sortBy(logical, order);
}

void TableViewPrivate::onSectionResized(int logical, int newSize)
{
    if (applying || newSize <= 0 || logical < 0 || logical >= columns.size())
        return;
    // A user's drag in either part; the other part and the column follow.
    columns.at(logical)->m_width = newSize;
    ++applying;
    if (q->columnWidth(logical) != newSize)
        q->setColumnWidth(logical, newSize);
    if (frozen->columnWidth(logical) != newSize)
        frozen->setColumnWidth(logical, newSize);
    --applying;
    updateFrozenGeometry();
}

void TableViewPrivate::onCurrentRowChanged(const QModelIndex &current)
{
    // A group row is no row of the user's model: the focus stays, for the
    // user's purposes, on the data row it last had.
    if (current.isValid() && groups->isGroupRow(current.row()))
        return;
    const int row = current.isValid() ? q->sourceRow(current.row()) : -1;
    if (row == lastFocusRow)
        return;
    const int previous = lastFocusRow;
    lastFocusRow = row;
    emit q->focusRowChanged(previous, row);
}

// TableView

TableView::TableView(QWidget *parent)
    : QTableView(parent)
    , d(new TableViewPrivate(this))
{
    setObjectName(QStringLiteral("bandGridTable"));
    qRegisterMetaType<Qt::SortOrder>("Qt::SortOrder");
    d->options = new GridOptions(this);
    d->sort = new SortProxyModel(this);
    d->groups = new GroupProxyModel(this);
    d->groups->setSourceModel(d->sort);
    d->delegate = new CellDelegate(this);
    d->header = new BandHeaderView(this, this);
    setHorizontalHeader(d->header);
    verticalHeader()->hide();
    setItemDelegate(d->delegate);
    setShowGrid(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollMode(ScrollPerPixel);
    setMouseTracking(true);
    viewport()->setAttribute(Qt::WA_Hover);
    QTableView::setModel(d->groups);

    d->frozen = new FrozenColumnsView(this);
    d->frozen->setModel(d->groups);
    QItemSelectionModel *own = d->frozen->selectionModel();
    d->frozen->setSelectionModel(selectionModel());
    delete own;
    d->frozen->setItemDelegate(d->delegate);
    viewport()->stackUnder(d->frozen);
    d->frozen->hide();

    connect(d->groups, &QAbstractItemModel::modelReset, this, [this] { d->onModelReset(); });
    connect(d->groups, &QAbstractItemModel::headerDataChanged, this, [this] {
        d->header->viewport()->update();
        d->frozen->bandHeader()->viewport()->update();
    });
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex &current) { d->onCurrentRowChanged(current); });
    for (BandHeaderView *header : {d->header, d->frozen->bandHeader()}) {
        connect(header, &QHeaderView::sectionClicked, this,
                [this, header](int logical) { d->onHeaderClicked(header, logical); });
        connect(header, &QHeaderView::sectionResized, this,
                [this](int logical, int, int newSize) { d->onSectionResized(logical, newSize); });
    }
    connect(verticalScrollBar(), &QAbstractSlider::valueChanged, d->frozen->verticalScrollBar(),
            &QAbstractSlider::setValue);
    connect(d->frozen->verticalScrollBar(), &QAbstractSlider::valueChanged, verticalScrollBar(),
            &QAbstractSlider::setValue);
    connect(d->options, &GridOptions::changed, this, [this] { d->applyOptions(); });

    setTheme(d->theme);
    d->applyOptions();
}

TableView::~TableView()
{
    // The headers outlive this part of the object while the widget base
    // deletes its children; they must not ask it for bands any more.
    d->header->detach();
    d->frozen->bandHeader()->detach();
    // The proxies, headers and selection go with the widget base, after
    // this part of the object; what they say on the way must not reach it.
    disconnect(d->groups, nullptr, this, nullptr);
    disconnect(d->sort, nullptr, d->groups, nullptr);
    disconnect(selectionModel(), nullptr, this, nullptr);
    disconnect(d->header, nullptr, this, nullptr);
    disconnect(d->frozen->bandHeader(), nullptr, this, nullptr);
    disconnect(d->options, nullptr, this, nullptr);
}

void TableView::setModel(QAbstractItemModel *model)
{
    d->source = model;
    d->sort->setSourceModel(model);
}

QAbstractItemModel *TableView::sourceModel() const
{
    return d->source;
}

int TableView::columnCount() const
{
    return d->columns.size();
}

Column *TableView::column(int index) const
{
    return index >= 0 && index < d->columns.size() ? d->columns.at(index) : nullptr;
}

Column *TableView::columnByCaption(const QString &caption) const
{
    for (Column *column : qAsConst(d->columns)) {
        const QString shown = column->caption().isEmpty() && d->source
            ? d->source->headerData(column->index(), Qt::Horizontal).toString()
            : column->caption();
        if (shown == caption)
            return column;
    }
    return nullptr;
}

int TableView::bandCount() const
{
    return d->bands.size();
}

Band *TableView::band(int index) const
{
    return index >= 0 && index < d->bands.size() ? d->bands.at(index) : nullptr;
}

int TableView::bandRowCount() const
{
    int rows = 0;
    for (const Band *band : qAsConst(d->bands)) {
        if (band->isShown())
            rows = qMax(rows, band->level() + 1);
    }
    return rows;
}

Band *TableView::createBand(const QString &caption)
{
    auto *band = new Band(this, d->bands.size(), caption);
    d->bands.append(band);
    bandLayoutChanged();
    return band;
}

GridOptions *TableView::options() const
{
    return d->options;
}

const GridTheme &TableView::theme() const
{
    return d->theme;
}

void TableView::setTheme(const GridTheme &theme)
{
    d->theme = theme;
    const QPalette palette = theme.palette(QTableView::palette());
    // The frozen overlay inherits it, and any role a user sets on the view later.
    setPalette(palette);
    // Slim scroll bars in the header's colours, as a terminal's tables have.
    const QString sheet = QStringLiteral(
        "QScrollBar:vertical { background: %1; width: 11px; margin: 0; border: none; }"
        "QScrollBar:horizontal { background: %1; height: 11px; margin: 0; border: none; }"
        "QScrollBar::handle { background: %2; border-radius: 3px; margin: 2px; }"
        "QScrollBar::handle:vertical { min-height: 24px; }"
        "QScrollBar::handle:horizontal { min-width: 24px; }"
        "QScrollBar::handle:hover { background: %3; }"
        "QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; border: none; background: none; }"
        "QScrollBar::add-page, QScrollBar::sub-page { background: none; }")
        .arg(theme.headerBase.name(), theme.headerLine.name(), theme.frozenEdge.name());
    verticalScrollBar()->setStyleSheet(sheet);
    horizontalScrollBar()->setStyleSheet(sheet);
    viewport()->update();
    d->frozen->viewport()->update();
    d->header->viewport()->update();
    d->frozen->bandHeader()->viewport()->update();
}

static QFont zoomed(QFont font, qreal factor)
{
    if (qFuzzyCompare(factor, 1.0))
        return font;
    if (font.pointSizeF() > 0)
        font.setPointSizeF(font.pointSizeF() * factor);
    else
        font.setPixelSize(qMax(1, qRound(font.pixelSize() * factor)));
    return font;
}

QFont TableView::cellFont() const
{
    return zoomed(font(), d->options->zoomFactor());
}

QFont TableView::captionFont() const
{
    return zoomed(d->options->hasColumnFont() ? d->options->columnFont() : font(),
                  d->options->zoomFactor());
}

int TableView::rowHeight() const
{
    // Compact rows: the text and three pixels above and below it.
    return QFontMetrics(cellFont()).height() + 6;
}

BandHeaderView *TableView::bandHeader() const
{
    return d->header;
}

QTableView *TableView::frozenView() const
{
    return d->frozen;
}

int TableView::frozenColumnCount() const
{
    return d->frozenCount();
}

bool TableView::isColumnFrozen(int column) const
{
    return d->isFrozen(column);
}

int TableView::frozenWidth() const
{
    int width = 0;
    for (int c = 0; c < d->columns.size(); ++c) {
        if (d->isFrozen(c) && !isColumnHidden(c))
            width += columnWidth(c);
    }
    return width;
}

QWidget *TableView::viewportOf(int column) const
{
    return d->isFrozen(column) && d->frozen->isVisible() ? d->frozen->viewport() : viewport();
}

QRect TableView::cellRect(int viewRow, int column) const
{
    const QModelIndex index = d->groups->index(viewRow, column);
    if (viewportOf(column) == d->frozen->viewport())
        return d->frozen->visualRect(index);
    return visualRect(index);
}

int TableView::sourceRow(int viewRow) const
{
    const int sorted = d->groups->sourceRow(viewRow);
    return sorted < 0 ? -1 : d->sort->sourceRow(sorted);
}

int TableView::viewRow(int sourceRow) const
{
    const int sorted = d->sort->proxyRow(sourceRow);
    return sorted < 0 ? -1 : d->groups->proxyRow(sorted);
}

int TableView::viewRowCount() const
{
    return d->groups->rowCount();
}

int TableView::focusedRow() const
{
    const QModelIndex current = currentIndex();
    return current.isValid() ? sourceRow(current.row()) : -1;
}

void TableView::setFocusedRow(int sourceRow, int column)
{
    const int row = viewRow(sourceRow);
    if (row < 0)
        return;
    setCurrentIndex(d->groups->index(row, qBound(0, column, qMax(0, columnCount() - 1))));
}

void TableView::deselectAll()
{
    clearSelection();
}

void TableView::sortBy(int column, Qt::SortOrder order)
{
    d->sort->setLocale(d->sortLocale);
    const Column *sorted = this->column(column);
    if (!sorted) {
        d->sort->sortBy(-1, Qt::DisplayRole, order, true);
        d->header->setSortIndicatorShown(false);
        d->frozen->bandHeader()->setSortIndicatorShown(false);
        emit sortChanged(-1, order);
        return;
    }
    d->sort->sortBy(column, sorted->sortRole(), order, sorted->isSortLocaleAware());
    for (BandHeaderView *header : {d->header, d->frozen->bandHeader()}) {
        header->setSortIndicatorShown(true);
        header->setSortIndicator(column, order);
    }
    emit sortChanged(column, order);
}

int TableView::sortColumn() const
{
    return d->sort->sortColumn();
}

Qt::SortOrder TableView::sortOrder() const
{
    return d->sort->sortOrder();
}

void TableView::setSortLocale(const QLocale &locale)
{
    d->sortLocale = locale;
    d->groups->setLocale(locale);
}

QLocale TableView::sortLocale() const
{
    return d->sortLocale;
}

void TableView::groupBy(int column)
{
    if (column >= 0 && (!d->options->isGroupingEnabled() || column >= columnCount())) {
        qWarning() << "cannot group by column" << column;
        return;
    }
    d->groups->setLocale(d->sortLocale);
    d->groups->setGroupColumn(column < 0 ? -1 : column);
}

int TableView::groupColumn() const
{
    return d->groups->groupColumn();
}

int TableView::groupCount() const
{
    return d->groups->groupCount();
}

bool TableView::isGroupRow(int viewRow) const
{
    return d->groups->isGroupRow(viewRow);
}

bool TableView::isGroupExpanded(int group) const
{
    return d->groups->isExpanded(group);
}

void TableView::setGroupExpanded(int group, bool expanded)
{
    if (group < 0 || group >= groupCount() || isGroupExpanded(group) == expanded)
        return;
    d->groups->setExpanded(group, expanded);
    emit groupExpandedChanged(group, expanded);
}

void TableView::toggleGroupAt(int viewRow)
{
    if (!isGroupRow(viewRow))
        return;
    const int group = d->groups->groupOfRow(viewRow);
    setGroupExpanded(group, !isGroupExpanded(group));
}

void TableView::expandAll()
{
    d->groups->expandAll();
}

void TableView::collapseAll()
{
    d->groups->collapseAll();
}

QString TableView::groupCaption(int viewRow) const
{
    const int group = d->groups->groupOfRow(viewRow);
    if (group < 0)
        return QString();
    const Column *grouped = column(groupColumn());
    QString caption = grouped ? grouped->caption() : QString();
    if (caption.isEmpty() && d->source)
        caption = d->source->headerData(groupColumn(), Qt::Horizontal).toString();
    QString text = d->groups->groupText(group);
    if (!caption.isEmpty())
        text = caption + QStringLiteral(": ") + text;
    return text + QStringLiteral("  (%1)").arg(d->groups->groupSize(group));
}

QString TableView::selectedText(bool withCaptions) const
{
    const QModelIndexList selected = selectedIndexes();
    if (selected.isEmpty())
        return QString();
    std::map<int, std::map<int, QString>> rows;   // view row -> visual column -> text
    std::set<int> visualColumns;
    for (const QModelIndex &index : selected) {
        if (isGroupRow(index.row()))
            continue;
        const int visual = horizontalHeader()->visualIndex(index.column());
        rows[index.row()][visual] = d->delegate->shownText(index);
        visualColumns.insert(visual);
    }
    QStringList lines;
    if (withCaptions && !visualColumns.empty()) {
        QStringList captions;
        for (int visual : visualColumns)
            captions << captionPath(horizontalHeader()->logicalIndex(visual));
        lines << captions.join(QLatin1Char('\t'));
    }
    for (const auto &row : rows) {
        QStringList cells;
        for (int visual : visualColumns) {
            const auto it = row.second.find(visual);
            cells << (it == row.second.end() ? QString() : it->second);
        }
        lines << cells.join(QLatin1Char('\t'));
    }
    return lines.join(QLatin1Char('\n'));
}

void TableView::copySelection() const
{
    QGuiApplication::clipboard()->setText(selectedText());
}

void TableView::copySelectionWithCaptions() const
{
    QGuiApplication::clipboard()->setText(selectedText(true));
}

QString TableView::captionPath(int index) const
{
    const Column *shown = column(index);
    if (!shown)
        return QString();
    QStringList parts;
    parts << (shown->caption().isEmpty() && d->source
                  ? d->source->headerData(index, Qt::Horizontal).toString()
                  : shown->caption());
    int steps = 0;
    for (const Band *band = shown->parentBand(); band && steps <= d->bands.size();
         band = band->parentBand(), ++steps) {
        if (!band->caption().isEmpty())
            parts.prepend(band->caption());
    }
    return parts.join(d->options->texts().captionSeparator);
}

SelectionSummary TableView::selectionSummary() const
{
    SelectionSummary summary;
    const QAbstractItemModel *source = d->source;
    if (!source)
        return summary;
    // The selection model keeps its ranges apart, so no cell is met twice.
    const QItemSelection selection = selectionModel()->selection();
    for (const QItemSelectionRange &range : selection) {
        const int right = qMin(range.right(), d->columns.size() - 1);
        for (int c = qMax(0, range.left()); c <= right; ++c) {
            if (isColumnHidden(c))
                continue;
            const int role = d->columns.at(c)->sortRole();
            for (int r = range.top(); r <= range.bottom(); ++r) {
                const int sorted = d->groups->sourceRow(r);
                if (sorted < 0)
                    continue; // a group row
                ++summary.count;
                const QVariant value = source->data(source->index(d->sort->sourceRow(sorted), c), role);
                switch (value.userType()) {
                case QMetaType::Double:
                case QMetaType::Float:
                case QMetaType::Int:
                case QMetaType::UInt:
                case QMetaType::LongLong:
                case QMetaType::ULongLong:
                case QMetaType::Short:
                case QMetaType::UShort: {
                    const double number = value.toDouble();
                    if (qIsFinite(number)) {
                        summary.sum += number;
                        ++summary.numbers;
                    }
                    break;
                }
                default:
                    break;
                }
            }
        }
    }
    return summary;
}

QMenu *TableView::createContextMenu(QWidget *parent)
{
    const GridTexts texts = d->options->texts();
    auto *menu = new QMenu(parent);
    const bool any = selectionModel()->hasSelection();
    QAction *copy = menu->addAction(texts.copy, this, [this] { copySelection(); });
    copy->setShortcut(QKeySequence::Copy);
    copy->setEnabled(any);
    QAction *withCaptions = menu->addAction(texts.copyWithCaptions, this,
                                            [this] { copySelectionWithCaptions(); });
    withCaptions->setEnabled(any);
    menu->addSeparator();
    QAction *all = menu->addAction(texts.selectAll, this, [this] { selectAll(); });
    all->setEnabled(selectionMode() == ExtendedSelection || selectionMode() == MultiSelection);
    return menu;
}

int TableView::hoveredRow() const
{
    return d->hoverRow;
}

void TableView::setHoveredRow(int viewRow)
{
    if (viewRow == d->hoverRow)
        return;
    const int previous = d->hoverRow;
    d->hoverRow = viewRow;
    if (d->options->hoverHighlight())
        d->updateHoveredRows(previous, viewRow);
}

bool TableView::isLinkVisited(const QString &anchor) const
{
    return !d->visitedLinks.isEmpty() && d->visitedLinks.contains(anchor);
}

void TableView::reportLinkClick(const QModelIndex &viewIndex, const QString &anchor)
{
    d->visitedLinks.insert(anchor);
    viewport()->update();
    d->frozen->viewport()->update();
    emit linkActivated(anchor, d->toSource(viewIndex));
}

void TableView::reportButtonClick(const QModelIndex &viewIndex, int button)
{
    const int row = sourceRow(viewIndex.row());
    if (Column *clicked = column(viewIndex.column()))
        emit clicked->buttonClicked(row, viewIndex.column(), button);
    emit cellButtonClicked(row, viewIndex.column(), button);
}

void TableView::columnStateChanged()
{
    d->applyColumnState();
}

void TableView::bandLayoutChanged()
{
    d->applyColumnState();
}

void TableView::updateHoverCursor(QAbstractItemView *view, const QPoint &pos)
{
    const QModelIndex index = view->indexAt(pos);
    const Column *hovered = column(index.column());
    bool pointing = false;
    if (hovered && !isGroupRow(index.row())) {
        const QRect cell = view->visualRect(index);
        pointing = d->delegate->buttonAt(cell, index, pos) >= 0
            || (hovered->editorKind() == EditorKind::Link
                && d->delegate->linkRect(cell, index, cellFont()).contains(pos));
    }
    if (pointing)
        view->viewport()->setCursor(Qt::PointingHandCursor);
    else
        view->viewport()->unsetCursor();
}

QModelIndex TableView::moveCursor(CursorAction cursorAction, Qt::KeyboardModifiers modifiers)
{
    const QModelIndex current = QTableView::moveCursor(cursorAction, modifiers);
    const int frozen = frozenWidth();
    if (frozen > 0 && current.isValid() && !d->isFrozen(current.column())) {
        const QRect rect = visualRect(current);
        if (rect.left() < frozen)
            horizontalScrollBar()->setValue(horizontalScrollBar()->value() + rect.left() - frozen);
    }
    return current;
}

void TableView::scrollTo(const QModelIndex &index, ScrollHint hint)
{
    if (!index.isValid())
        return;
    if (d->isFrozen(index.column()) || isGroupRow(index.row())) {
        // A frozen cell is always in sight sideways: only rows may move.
        const int horizontal = horizontalScrollBar()->value();
        QTableView::scrollTo(index, hint);
        horizontalScrollBar()->setValue(horizontal);
        return;
    }
    QTableView::scrollTo(index, hint);
    const int frozen = frozenWidth();
    const QRect rect = visualRect(index);
    if (frozen > 0 && rect.left() < frozen)
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() + rect.left() - frozen);
}

void TableView::updateGeometries()
{
    QTableView::updateGeometries();
    if (d && d->frozen && d->header->owner())
        d->updateFrozenGeometry();
}

void TableView::paintEvent(QPaintEvent *event)
{
    QTableView::paintEvent(event);
    d->paintGroupCaptions(this, event->rect());
}

void TableView::paintGroupCaptions(QTableView *view, const QRect &region)
{
    d->paintGroupCaptions(view, region);
}

void TableView::resizeEvent(QResizeEvent *event)
{
    QTableView::resizeEvent(event);
    d->updateFrozenGeometry();
}

void TableView::keyPressEvent(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
        event->accept();
        return;
    }
    const QModelIndex current = currentIndex();
    if (current.isValid() && isGroupRow(current.row())) {
        const int group = d->groups->groupOfRow(current.row());
        switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Minus:
            setGroupExpanded(group, false);
            event->accept();
            return;
        case Qt::Key_Right:
        case Qt::Key_Plus:
            setGroupExpanded(group, true);
            event->accept();
            return;
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter:
            setGroupExpanded(group, !isGroupExpanded(group));
            event->accept();
            return;
        default:
            break;
        }
    }
    QTableView::keyPressEvent(event);
}

void TableView::wheelEvent(QWheelEvent *event)
{
    if ((event->modifiers() & Qt::ControlModifier) && d->options->isZoomEnabled()) {
        const int steps = event->angleDelta().y() / 120;
        if (steps != 0)
            d->options->setZoomFactor(d->options->zoomFactor() + 0.1 * steps);
        event->accept();
        return;
    }
    QTableView::wheelEvent(event);
}

void TableView::mousePressEvent(QMouseEvent *event)
{
    QTableView::mousePressEvent(event);
    if (d->options->rubberBandSelection() && event->button() == Qt::LeftButton
        && selectionMode() == ExtendedSelection) {
        d->rubberOrigin = event->pos();
        if (!d->rubberBand)
            d->rubberBand = new QRubberBand(QRubberBand::Rectangle, viewport());
        d->rubberBand->setGeometry(QRect(d->rubberOrigin, QSize()));
    }
}

void TableView::mouseMoveEvent(QMouseEvent *event)
{
    QTableView::mouseMoveEvent(event);
    if (d->rubberBand && (event->buttons() & Qt::LeftButton) && d->options->rubberBandSelection()) {
        d->rubberBand->setGeometry(QRect(d->rubberOrigin, event->pos()).normalized());
        d->rubberBand->show();
    }
    updateHoverCursor(this, event->pos());
    setHoveredRow(rowAt(event->pos().y()));
}

void TableView::mouseReleaseEvent(QMouseEvent *event)
{
    QTableView::mouseReleaseEvent(event);
    if (d->rubberBand)
        d->rubberBand->hide();
}

void TableView::changeEvent(QEvent *event)
{
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange && d && d->frozen) {
        d->frozen->setFont(font());
        d->applyMetrics();
    }
}

bool TableView::viewportEvent(QEvent *event)
{
    if (event->type() == QEvent::Leave)
        setHoveredRow(-1);
    if (event->type() == QEvent::ToolTip) {
        auto *help = static_cast<QHelpEvent *>(event);
        const QModelIndex index = indexAt(help->pos());
        const Column *hovered = column(index.column());
        const int button = hovered ? d->delegate->buttonAt(visualRect(index), index, help->pos()) : -1;
        if (button >= 0 && !hovered->buttonToolTip(button).isEmpty()) {
            QToolTip::showText(help->globalPos(), hovered->buttonToolTip(button), viewport());
            return true;
        }
    }
    return QTableView::viewportEvent(event);
}

void TableView::contextMenuEvent(QContextMenuEvent *event)
{
    if (!d->options->isContextMenuEnabled()) {
        QTableView::contextMenuEvent(event);
        return;
    }
    QMenu *menu = createContextMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
    event->accept();
}

// BandedTableView

BandedTableView::BandedTableView(QWidget *parent)
    : TableView(parent)
{
    setObjectName(QStringLiteral("bandGridBandedTable"));
}

Band *BandedTableView::addBand(const QString &caption)
{
    return createBand(caption);
}

} // namespace BandGrid
