#include "mulittable/tfsujecttableview.h"

#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "tfmessagebox.h"

#include "bandgrid.h"
#include "tfcore/tfcore.h"
#include "tfcore/tfglobalcss.h"

#include <QApplication>
#include <QDebug>
#include <QEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QRegExp>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

namespace {

const int kCentred = Qt::AlignHCenter | Qt::AlignVCenter; // 132
const int kDefaultWidth = 104;
const int kMeasuredWidth = -9;

// The two grid line styles the table asks for: 5 for the ordinary table,
// 1 for the vertical-grid form, which separates its rows only.
void setGridLineStyle(BandGrid::GridOptions *options, int style)
{
    if (style == 1)
        options->setGridLines(BandGrid::HorizontalLines);
    else
        options->setGridLines(BandGrid::AllLines);
}

} // namespace

// EditorLinkEventArgs

EditorLinkEventArgs::EditorLinkEventArgs(BandGrid::Column *column, int row, const QString &anchor)
    : m_column(column)
    , m_row(row)
    , m_anchor(anchor)
{
}

bool EditorLinkEventArgs::getValue(int role, QVariant &out) const
{
    if (!m_column || !m_column->view() || !m_column->view()->sourceModel())
        return false;
    out = m_column->value(m_row, role);
    return true;
}

QVariant EditorLinkEventArgs::cellValue(int column, int role) const
{
    if (!m_column || !m_column->view())
        return QVariant();
    const BandGrid::Column *other = m_column->view()->column(column);
    return other ? other->value(m_row, role) : QVariant();
}

// TFSujectTableView

TFSujectTableView::TFSujectTableView(QWidget *parent)
    : QFrame(parent)
    , m_corner(new QToolButton(this))
    , m_grid(new BandGrid::Grid(this))
{
    setObjectName(QStringLiteral("tfTableView"));
    m_corner->setObjectName(QStringLiteral("CornerWidget"));
    m_grid->setObjectName(QStringLiteral("tfGridView"));
    m_grid->setMouseTracking(true);
    // The corner button stands level with the captions; it has no action.
    m_corner->setAutoRaise(true);
    m_corner->setFixedWidth(0);

    auto *cornerLayout = new QVBoxLayout;
    cornerLayout->setContentsMargins(0, 0, 0, 0);
    cornerLayout->setSpacing(0);
    cornerLayout->addWidget(m_corner);
    cornerLayout->addStretch();

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(cornerLayout);
    layout->addWidget(m_grid);
    // The grid shows no texts of its own, so there is no translation to load.

    applyGridFont();
    connect(TFCore::instance(), &TFCore::signalSkinChanged, this, &TFSujectTableView::applyTheme);
}

TFSujectTableView::~TFSujectTableView() = default;

void TFSujectTableView::setModel(TFSubjectTableModel *model, bool rebind)
{
    Q_UNUSED(rebind)
    m_model = model;
    m_header = model ? model->header() : nullptr;
    m_depth = m_header ? m_header->depth() : 1;

    m_grid->setViewType(m_depth < 3 ? BandGrid::ViewType::Table : BandGrid::ViewType::BandedTable);
    m_view = m_grid->view();

    if (m_depth > 2)
        createBands();
    m_view->setModel(model);
    if (m_depth > 2)
        bindBander();

    if (m_header) {
        const QList<HeaderFieldInfo *> records = m_header->leafRecords();
        applyColumnSettings(records);
        qDeleteAll(records);
    }
    int hidden = 0;
    hideColumn(hidden);

    applyOptions();
    applyTheme();
    m_view->options()->setColumnFont(m_view->font());

    connect(m_view, &BandGrid::TableView::focusRowChanged, this,
            [this](int, int currentRow) { emit clicked(currentRow); });
    connect(m_view, &BandGrid::TableView::linkActivated, this, &TFSujectTableView::onLinkActivated);
    if (model) {
        connect(model, &QAbstractItemModel::modelReset, this, &TFSujectTableView::onModelReset,
                Qt::UniqueConnection);
        connect(model, &QAbstractItemModel::headerDataChanged, this,
                &TFSujectTableView::onHeaderDataChanged, Qt::UniqueConnection);
    }
}

void TFSujectTableView::createBands()
{
    auto *banded = m_grid->bandedView();
    if (!banded || !m_header)
        return;
    // A leaf above the bottom level gets an empty band of its own, so that
    // its column stands under the same number of band rows as the others.
    const int levels = m_depth - 2;
    for (int level = 1; level <= levels; ++level) {
        const QList<TFTreeStruct *> nodes = m_header->nodesAtLevel(level);
        for (TFTreeStruct *node : nodes) {
            const QString title = node->hasChildren() ? node->displayCaption() : QString();
            BandGrid::Band *band = banded->addBand(title);
            band->setTextAlignment(Qt::Alignment(kCentred));
            band->setProperty("fieldName", node->info().fieldName);
            if (node->info().ownerBand != QLatin1String("0")) {
                if (BandGrid::Band *owner = findBand(node->info().ownerBand))
                    band->setBandIndex(owner->index());
            }
        }
    }
}

BandGrid::Band *TFSujectTableView::findBand(const QString &fieldName) const
{
    if (!m_view || fieldName.isEmpty())
        return nullptr;
    for (int i = 0; i < m_view->bandCount(); ++i) {
        BandGrid::Band *band = m_view->band(i);
        if (band->property("fieldName").toString() == fieldName)
            return band;
    }
    return nullptr;
}

void TFSujectTableView::bindBander()
{
    if (m_depth < 3 || !m_header || !m_view)
        return;
    const QList<TFTreeStruct *> leaves = m_header->leaves();
    for (int i = 0; i < leaves.size(); ++i) {
        const HeaderFieldInfo &info = leaves.at(i)->info();
        QString name = info.ownerBand;
        if (name.isEmpty() || name == QLatin1String("0"))
            name = info.fieldName;
        BandGrid::Column *column = m_view->column(i);
        if (!column) {
            qWarning() << "column is not found index:" << i;
            continue;
        }
        if (BandGrid::Band *band = findBand(name))
            column->setBandIndex(band->index());
    }
}

int TFSujectTableView::columnWidth(const HeaderFieldInfo &record, const QFont &font)
{
    if (record.width == kMeasuredWidth) {
        const QFontMetrics metrics(font);
        int width = metrics.horizontalAdvance(record.caption) + 45;
        if (!record.showUnit.isEmpty())
            width += metrics.horizontalAdvance(QStringLiteral("( ") + record.showUnit + QStringLiteral(" )"));
        return width;
    }
    return record.width > 0 ? record.width : kDefaultWidth;
}

void TFSujectTableView::applyColumnSettings(const QList<HeaderFieldInfo *> &records)
{
    if (!m_view)
        return;
    for (int i = 0; i < records.size(); ++i) {
        const HeaderFieldInfo *record = records.at(i);
        if (!record || !record->visible)
            continue;
        BandGrid::Column *column = m_view->column(i);
        if (!column)
            continue;
        column->setWidth(columnWidth(*record, m_view->font()));

        if (record->columnType.compare(QLatin1String("MemoExEdit"), Qt::CaseInsensitive) == 0) {
            if (column->buttonCount() == 0) {
                column->addButton();
                connect(column, &BandGrid::Column::buttonClicked, this,
                        [this](int row, int col, int) { onCellButtonClicked(row, col); });
            }
        } else if (record->columnType.compare(QLatin1String("HyperLinkEdit"), Qt::CaseInsensitive) == 0) {
            if (column->editorKind() != BandGrid::EditorKind::Link)
                column->setEditorKind(BandGrid::EditorKind::Link);
        }
        // A rating editor was once planned for "BandedGridColumnWithRating";
        // no such editor exists, so that type shows as text.
    }
}

void TFSujectTableView::onCellButtonClicked(int row, int column)
{
    if (!m_view)
        return;
    const BandGrid::Column *clicked = m_view->column(column);
    const BandGrid::Column *first = m_view->column(0);
    if (!clicked)
        return;
    const QString text = clicked->value(row, Qt::DisplayRole).toString();
    const QString name = first ? first->value(row, Qt::DisplayRole).toString().left(6) : QString();
    // A column shows the model's caption until one is set on it.
    QString caption = clicked->caption();
    if (caption.isEmpty() && m_model)
        caption = m_model->headerData(column, Qt::Horizontal).toString();
    TFMessageBox::showMsg(name + QLatin1Char('-') + caption, text);
}

void TFSujectTableView::hideColumn(int &hiddenCount)
{
    hiddenCount = 0;
    if (!m_view || !m_header)
        return;
    const bool banded = m_grid->bandedView() != nullptr;
    const QList<int> hidden = m_header->hiddenLeafIndexes();
    for (int index : hidden) {
        qDebug() << "hidden column:" << index;
        BandGrid::Column *column = m_view->column(index);
        if (!column)
            continue;
        column->setVisible(false);
        ++hiddenCount;
        if (!banded)
            continue;
        // Walk up from the column's band: a band stays while a visible
        // column or another visible band still stands under it.
        for (BandGrid::Band *band = column->parentBand(); band; band = band->parentBand()) {
            bool keep = false;
            for (int c = 0; c < m_view->columnCount() && !keep; ++c) {
                const BandGrid::Column *other = m_view->column(c);
                const BandGrid::Band *owner = other->parentBand();
                keep = other->isVisible() && owner && (owner == band || owner->isDescendantOf(band));
            }
            if (!keep && !band->isBottomBand()) {
                for (int b = 0; b < m_view->bandCount() && !keep; ++b) {
                    const BandGrid::Band *other = m_view->band(b);
                    keep = other != band && other->isDescendantOf(band) && other->isVisible();
                }
            }
            band->setVisible(keep);
        }
    }
}

void TFSujectTableView::setFrozenCount(int count)
{
    qDebug() << "frozenCount:" << count;
    if (!m_view || !m_model || count <= 0 || count > m_model->columnCount())
        return;
    for (int i = 0; i < count; ++i) {
        if (BandGrid::Column *column = m_view->column(i))
            column->setFixedKind(BandGrid::FixedKind::Left);
    }
}

void TFSujectTableView::setGroupColumn(int column)
{
    if (!m_view)
        return;
    const int last = m_view->columnCount() - 1;
    if (column < 0 || column > last)
        column = last;
    if (BandGrid::Column *grouped = m_view->column(column))
        grouped->setGroupIndex(0);
    // Group rows: blue captions on a light grey band with a grey rule.
    BandGrid::GridTheme theme = m_grid->theme();
    theme.groupText = QColor(QStringLiteral("#0060E3"));
    theme.groupBase = QColor(QStringLiteral("#F0F0F0"));
    theme.groupLine = QColor(QStringLiteral("#CCCCCC"));
    m_grid->setTheme(theme);
}

void TFSujectTableView::expandAll()
{
    if (m_view)
        m_view->expandAll();
}

void TFSujectTableView::setColumnsAlignment(int alignment)
{
    if (!m_view || !m_header)
        return;
    const int leaves = m_header->leaves().size();
    for (int i = 0; i < leaves; ++i) {
        BandGrid::Column *column = m_view->column(i);
        if (!column)
            continue;
        column->setSortRole(TFSubjectTableModel::SortValueRole);
        column->setSortLocaleAware(true);
        column->setTextAlignment(Qt::Alignment(alignment));
    }
    m_view->options()->setColumnFont(m_view->font());
}

void TFSujectTableView::setVGridHeader(const QString &fieldName)
{
    if (fieldName.isEmpty() || !m_view)
        return;
    if (m_grid->bandedView())
        setModel(m_model, true);
    if (TFTreeStruct *node = m_header ? m_header->findField(fieldName) : nullptr) {
        if (BandGrid::Column *column = m_view->columnByCaption(node->displayCaption())) {
            column->setFixedKind(BandGrid::FixedKind::Left);
            setGridLineStyle(m_view->options(), 1);
        }
    }
    m_view->options()->setAlternatingRowColors(false);
    m_view->deselectAll();
    m_view->options()->setSelectionPolicy(BandGrid::SelectionPolicy(2));
}

void TFSujectTableView::applyOptions()
{
    BandGrid::GridOptions *options = m_view->options();
    options->setBorderWidth(1);
    options->setGroupingEnabled(true);
    options->setTransparentBackground(true);
    options->setAlternatingRowColors(true);
    setGridLineStyle(options, 5);
    // No grouping panel, zoom indicator, filter row or column menu exist in
    // this grid, so those switches have nothing to turn off.
    options->setRubberBandSelection(true);
    options->setColumnHidingOnGroupingEnabled(true);
    options->setZoomEnabled(false);
    options->setZoomFactor(1.0);
    options->setCellButtonAutoRaise(true);
}

void TFSujectTableView::applyTheme()
{
    if (!m_view)
        return;
    const bool dark = TFCore::instance()->getCurrentSkinId().compare(QLatin1String("black"),
                                                                      Qt::CaseInsensitive) == 0;
    BandGrid::GridTheme theme = dark ? BandGrid::GridTheme::dark() : BandGrid::GridTheme::light();
    const BandGrid::GridTheme current = m_grid->theme();
    // The group palette of setGroupColumn belongs to the view, not the skin.
    theme.groupText = current.groupText;
    theme.groupBase = current.groupBase;
    theme.groupLine = current.groupLine;
    // The selection follows the host's colours; the base stays the grid's.
    const QColor selection = TFGlobalCss::getTipsColorByIndex(1);
    const QColor selectionText = TFGlobalCss::getTipsColorByIndex(2);
    if (selection.isValid())
        theme.highlight = selection;
    if (selectionText.isValid())
        theme.highlightedText = selectionText;
    m_grid->setTheme(theme);

    applyGridFont();
    m_view->options()->setZoomFactor(1.0);
}

void TFSujectTableView::applyGridFont()
{
    // The root view takes the grid's font, so widths measured before the
    // theme runs match the text as shown.
    QFont font = m_grid->font();
    font.setFamily(QApplication::font().family());
    font.setPointSize(10);
    m_grid->setFont(font);
}

void TFSujectTableView::onModelReset()
{
    if (!m_model || !m_view || m_model->rowCount() == 0)
        return;
    if (m_header) {
        const QList<HeaderFieldInfo *> records = m_header->leafRecords();
        applyColumnSettings(records);
        qDeleteAll(records);
        const int leaves = m_header->leaves().size();
        for (int i = 0; i < leaves; ++i) {
            BandGrid::Column *column = m_view->column(i);
            if (!column)
                continue;
            column->setSortRole(TFSubjectTableModel::SortValueRole);
            column->setSortLocaleAware(true);
            column->setTextAlignment(Qt::Alignment(kCentred));
        }
    }
    m_view->options()->setColumnFont(m_view->font());
}

void TFSujectTableView::onHeaderDataChanged()
{
    if (!m_view || !m_header)
        return;
    const QList<TFTreeStruct *> leaves = m_header->leaves();
    for (int i = 0; i < leaves.size(); ++i) {
        if (BandGrid::Column *column = m_view->column(i))
            column->setCaption(leaves.at(i)->displayCaption());
    }
    m_grid->update();
}

void TFSujectTableView::onLinkActivated(const QString &anchor, const QModelIndex &sourceIndex)
{
    if (!m_view || !sourceIndex.isValid())
        return;
    EditorLinkEventArgs args(m_view->column(sourceIndex.column()), sourceIndex.row(), anchor);
    editorLinkActivated(&args);
}

QString TFSujectTableView::substituteLink(const QString &link, const QMap<QString, QVariant> &values)
{
    QUrl url(link);
    // Without a query there is nothing to fill; the text goes on as written.
    if (!url.hasQuery()) {
        qDebug() << "linkActivated:" << link;
        return link;
    }
    QString query = url.query();
    QRegExp placeholder(QStringLiteral("\\$\\{(.*)\\}"));
    placeholder.setMinimal(true);
    QStringList names;
    int pos = 0;
    while ((pos = placeholder.indexIn(query, pos)) != -1) {
        names.append(placeholder.cap(1));
        pos += qMax(1, placeholder.matchedLength());
    }
    for (const QString &name : qAsConst(names))
        query.replace(QStringLiteral("${%1}").arg(name), values.value(name).toString());
    url.setQuery(query);
    qDebug() << "linkActivated:" << url;
    return url.toString();
}

void TFSujectTableView::editorLinkActivated(EditorLinkEventArgs *args)
{
    if (!args) {
        qWarning() << "this args is not vaild!!!";
        return;
    }
    QVariant linkValue;
    if (!args->getValue(TFSubjectTableModel::LinkRole, linkValue) || linkValue.isNull()
        || linkValue.toString().isEmpty()) {
        emit linkActivated(args->anchor());
        return;
    }
    const QString link = linkValue.toString();
    qDebug() << "editroLinkActivated:" << link;

    const RowData cells = args->cellValue(0, TFSubjectTableModel::RowDataRole).value<RowData>();
    QMap<QString, QVariant> values;
    for (const TFTableModelData::tagCellValue &cell : cells)
        values.insert(cell.fieldName, cell.value);
    qDebug() << "map keys:" << values.keys();

    emit linkActivated(substituteLink(link, values));
}

bool TFSujectTableView::eventFilter(QObject *watched, QEvent *event)
{
    Q_UNUSED(watched)
    return event->type() == QEvent::Wheel;
}
