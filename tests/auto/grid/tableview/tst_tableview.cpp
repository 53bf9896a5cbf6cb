#include "bandgrid.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QMenu>
#include <QRubberBand>
#include <QStandardItemModel>
#include <QtTest>

#include <memory>

using namespace BandGrid;
using IntList = QVector<int>;

// Clicks, keys and signals of a table view over a small model whose first
// column holds numbers to sort by, so that view rows and model rows differ.
class tst_TableView : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void clicks_data();
    void clicks();
    void linkParse_data();
    void linkParse();
    void copySelection_data();
    void copySelection();
    void focusRow();
    void zoom();
    void themeFontAndBorder();
    void modelChangesUnderTheView();
    void painting_data();
    void painting();
    void cellAlignment_data();
    void cellAlignment();
    void linkColoursFromThePalette();
    void hoveredRow_data();
    void hoveredRow();
    void contextMenu();
    void selectionSummary_data();
    void selectionSummary();
    void gridAcrossViewTypes();

private:
    QStyleOptionViewItem cellOption(int viewRow, int column) const;
    void select(const QRect &cells, QItemSelectionModel::SelectionFlags flags = QItemSelectionModel::Select);
    QStandardItemModel *m_model = nullptr;
    TableView *m_view = nullptr;
    QStringList m_events; // the view's signals, in turn
};

void tst_TableView::init()
{
    const QList<QStringList> rows{{"30", "alpha", "<a href='view:one?id=1'>first</a>", "memo A"},
                                  {"10", "beta", "plain-link", "memo B"},
                                  {"20", "gamma", "", "memo C"}};
    m_model = new QStandardItemModel(rows.size(), 4);
    m_model->setHorizontalHeaderLabels({"num", "name", "link", "memo"});
    for (int r = 0; r < rows.size(); ++r) {
        for (int c = 0; c < 4; ++c)
            m_model->setItem(r, c, new QStandardItem(rows.at(r).at(c)));
        m_model->item(r, 0)->setData(rows.at(r).at(0).toInt(), Qt::UserRole);
    }
    m_view = new TableView;
    m_view->setModel(m_model);
    m_view->column(0)->setSortRole(Qt::UserRole);
    m_view->column(2)->setEditorKind(EditorKind::Link);
    m_view->column(2)->setWidth(200);
    m_view->column(2)->setTextAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_view->column(3)->addButton(QIcon(), QStringLiteral("more"));
    m_view->sortBy(0, Qt::AscendingOrder); // view rows: beta, gamma, alpha
    m_view->resize(600, 300);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view));
    m_view->setCurrentIndex(QModelIndex());
    m_events.clear();
    connect(m_view, &TableView::linkActivated, this, [this](const QString &anchor, const QModelIndex &source) {
        m_events << QStringLiteral("link %1 at %2,%3").arg(anchor).arg(source.model() == m_model ? source.row() : -9).arg(source.column());
    });
    connect(m_view, &TableView::cellButtonClicked, this, [this](int row, int column, int button) {
        m_events << QStringLiteral("button %1 at %2,%3").arg(button).arg(row).arg(column);
    });
    connect(m_view->column(3), &Column::buttonClicked, this, [this](int row, int, int) {
        m_events << QStringLiteral("memo %1").arg(m_view->column(3)->value(row).toString());
    });
    connect(m_view, &TableView::focusRowChanged, this, [this](int from, int to) {
        m_events << QStringLiteral("focus %1 to %2").arg(from).arg(to);
    });
}

void tst_TableView::cleanup()
{
    delete m_view;
    delete m_model;
    QGuiApplication::clipboard()->clear();
}

void tst_TableView::select(const QRect &cells, QItemSelectionModel::SelectionFlags flags)
{
    const QAbstractItemModel *model = m_view->model();
    m_view->selectionModel()->select(QItemSelection(model->index(cells.top(), cells.left()),
                                                    model->index(cells.bottom(), cells.right())), flags);
}

void tst_TableView::clicks_data()
{
    // View rows: beta (model row 1), gamma (2), alpha (0).
    QTest::addColumn<int>("viewRow");
    QTest::addColumn<int>("column");
    QTest::addColumn<int>("x"); // from the cell's left edge, or its right when negative
    QTest::addColumn<QStringList>("events");
    QTest::newRow("anchor in the text") << 2 << 2 << 8 << QStringList{"focus -1 to 0", "link view:one?id=1 at 0,2"};
    QTest::newRow("plain text leads to itself") << 0 << 2 << 8 << QStringList{"focus -1 to 1", "link plain-link at 1,2"};
    QTest::newRow("beside the text") << 0 << 2 << 190 << QStringList{"focus -1 to 1"};
    QTest::newRow("empty cell") << 1 << 2 << 8 << QStringList{"focus -1 to 2"};
    QTest::newRow("memo button: the model's row") << 1 << 3 << -6 << QStringList{"memo memo C", "button 0 at 2,3"};
    QTest::newRow("text of a cell with a button") << 1 << 3 << 6 << QStringList{"focus -1 to 2"};
}

void tst_TableView::clicks()
{
    QFETCH(int, viewRow);
    QFETCH(int, column);
    QFETCH(int, x);
    const QRect cell = m_view->cellRect(viewRow, column);
    const QPoint at(x < 0 ? cell.right() + x : cell.left() + x, cell.center().y());
    QTest::mouseClick(m_view->viewportOf(column), Qt::LeftButton, {}, at);
    QTEST(m_events, "events");
}

void tst_TableView::linkParse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("anchor");
    QTest::newRow("double quotes") << "<a href=\"x?y=1\">go</a>" << "go" << "x?y=1";
    QTest::newRow("text around") << "see <a href='u'>here</a> now" << "see here now" << "u";
    QTest::newRow("upper case tag") << "<A HREF='u'>Up</A>" << "Up" << "u";
    QTest::newRow("broken tag") << "<a href=u>x" << "<a href=u>x" << "<a href=u>x";
    QTest::newRow("less-than in text") << "1 < 2" << "1 < 2" << "1 < 2";
}

void tst_TableView::linkParse()
{
    QFETCH(QString, text);
    const LinkText link = LinkText::parse(text);
    QTEST(link.shown, "shown");
    QTEST(link.anchor, "anchor");
}

void tst_TableView::copySelection_data()
{
    // Cells selected as the policy selects them (whole rows or cells); an
    // empty rectangle deselects all after selecting all.
    QTest::addColumn<int>("policy");
    QTest::addColumn<QRect>("cells"); // x: view columns, y: view rows
    QTest::addColumn<IntList>("hiddenColumns");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("mode");
    const int cells = int(SelectionPolicy::MultiCell);
    const int rows = int(SelectionPolicy::MultiRow);
    const int many = QAbstractItemView::ExtendedSelection;
    const int one = QAbstractItemView::SingleSelection;
    QTest::newRow("one cell") << cells << QRect(1, 1, 1, 1) << IntList{} << "gamma" << many;
    QTest::newRow("block in view order") << cells << QRect(0, 0, 2, 2) << IntList{} << "10\tbeta\n20\tgamma" << many;
    QTest::newRow("links copy their shown text") << cells << QRect(2, 2, 1, 1) << IntList{} << "first" << many;
    QTest::newRow("whole rows") << rows << QRect(0, 2, 1, 1) << IntList{} << "30\talpha\tfirst\tmemo A" << many;
    QTest::newRow("hidden columns are left out") << rows << QRect(0, 0, 1, 2) << IntList{1, 2}
                                                 << "10\tmemo B\n20\tmemo C" << many;
    QTest::newRow("single row") << int(SelectionPolicy::SingleRow) << QRect(1, 2, 1, 1) << IntList{}
                                << "30\talpha\tfirst\tmemo A" << one;
    QTest::newRow("single cell") << int(SelectionPolicy::SingleCell) << QRect(1, 1, 1, 1) << IntList{} << "gamma" << one;
    QTest::newRow("deselected") << cells << QRect() << IntList{} << "" << many;
    QTest::newRow("no selection") << int(SelectionPolicy::NoSelection) << QRect() << IntList{} << ""
                                  << int(QAbstractItemView::NoSelection);
}

void tst_TableView::copySelection()
{
    QFETCH(int, policy);
    QFETCH(QRect, cells);
    QFETCH(IntList, hiddenColumns);
    QFETCH(QString, text);
    m_view->options()->setSelectionPolicy(SelectionPolicy(policy));
    QTEST(int(m_view->selectionMode()), "mode");
    QTEST(int(m_view->frozenView()->selectionMode()), "mode");
    for (int c : hiddenColumns)
        m_view->column(c)->setVisible(false);
    m_view->selectAll();
    if (cells.isNull())
        m_view->deselectAll();
    else
        select(cells, QItemSelectionModel::ClearAndSelect
                          | (m_view->selectionBehavior() == QAbstractItemView::SelectRows ? QItemSelectionModel::Rows
                                                                                          : QItemSelectionModel::NoUpdate));
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    m_view->setFocus();
    QTest::keyClick(m_view, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(m_view->selectedText(), text);
    if (!text.isEmpty())
        QCOMPARE(QGuiApplication::clipboard()->text(), text);
}

void tst_TableView::focusRow()
{
    m_view->setFocus();
    m_view->setCurrentIndex(QModelIndex());
    m_events.clear();
    m_view->setCurrentIndex(m_view->model()->index(0, 0));
    QTest::keyClick(m_view, Qt::Key_Down);
    QTest::keyClick(m_view, Qt::Key_Right); // same row: no signal
    QTest::keyClick(m_view, Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(m_events, (QStringList{"focus -1 to 1", "focus 1 to 2", "focus 2 to 0"}));
    QCOMPARE(m_view->focusedRow(), 0);

    // A group row is no focus row.
    m_view->column(1)->setGroupIndex(0); // one group per name
    m_view->expandAll();
    QVERIFY(m_view->isGroupRow(0));
    m_events.clear();
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, m_view->cellRect(1, 1).center());
    QCOMPARE(m_events.size(), 1);
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, m_view->cellRect(2, 1).center());
    QVERIFY(m_view->isGroupRow(m_view->currentIndex().row()));
    QCOMPARE(m_events.size(), 1);
}

void tst_TableView::zoom()
{
    const int rowHeight = m_view->rowHeight();
    QWheelEvent wheel(QPointF(20, 20), m_view->viewport()->mapToGlobal(QPoint(20, 20)), QPoint(),
                      QPoint(0, 120), Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(m_view->viewport(), &wheel);
    QCOMPARE(m_view->options()->zoomFactor(), 1.0); // zoom is off unless asked for
    m_view->options()->setZoomEnabled(true);
    QCoreApplication::sendEvent(m_view->viewport(), &wheel);
    QCOMPARE(m_view->options()->zoomFactor(), 1.1);
    QVERIFY(m_view->rowHeight() > rowHeight);
    QCOMPARE(m_view->verticalHeader()->defaultSectionSize(), m_view->rowHeight());
    m_view->options()->setZoomFactor(100);
    QCOMPARE(m_view->options()->zoomFactor(), 3.0);
}

void tst_TableView::themeFontAndBorder()
{
    m_view->setTheme(GridTheme::dark());
    QCOMPARE(m_view->palette().color(QPalette::Base), GridTheme::dark().base);
    const QRect cell = m_view->cellRect(0, 1);
    QCOMPARE(m_view->viewport()->grab().toImage().pixelColor(cell.right() - 2, cell.top() + 2), GridTheme::dark().base);
    m_view->options()->setBorderWidth(3);
    QCOMPARE(m_view->lineWidth(), 3);
    m_view->options()->setBorderWidth(0);
    QCOMPARE(m_view->frameShape(), QFrame::NoFrame);

    // The column font sizes the header; the cells keep the view's font.
    const int before = m_view->horizontalHeader()->height();
    QFont big = m_view->font();
    big.setPointSize(big.pointSize() * 3);
    m_view->options()->setColumnFont(big);
    QCOMPARE(m_view->captionFont(), big);
    QVERIFY(m_view->horizontalHeader()->height() > before);
    QCOMPARE(m_view->cellFont(), m_view->font());
}

void tst_TableView::modelChangesUnderTheView()
{
    // A model that replaces its rows and only reports dataChanged.
    class Rows : public QAbstractTableModel
    {
    public:
        QStringList rows{"a", "b"};
        int rowCount(const QModelIndex &) const override { return rows.size(); }
        int columnCount(const QModelIndex &) const override { return 1; }
        QVariant data(const QModelIndex &i, int role) const override
        {
            return role == Qt::DisplayRole ? QVariant(rows.value(i.row())) : QVariant();
        }
    } model;
    TableView view;
    view.setModel(&model);
    QCOMPARE(view.viewRowCount(), 2);
    model.rows = QStringList{"c", "d", "e"};
    emit model.dataChanged(model.index(0, 0), model.index(2, 0), {});
    QCOMPARE(view.viewRowCount(), 3);
    QCOMPARE(view.model()->index(2, 0).data().toString(), QStringLiteral("e"));

    // A grouped view outlives its model and paints an empty table.
    m_view->column(0)->setGroupIndex(0);
    m_view->expandAll();
    QVERIFY(m_view->viewRowCount() > 0);
    delete m_model;
    m_model = nullptr;
    QCOMPARE(m_view->viewRowCount(), 0);
    QCOMPARE(m_view->sourceModel(), nullptr);
    QCOMPARE(m_view->column(1) ? m_view->column(1)->value(0) : QVariant(), QVariant());
    m_view->viewport()->grab();
}

void tst_TableView::painting_data()
{
    // Red grid lines; cell (1, 1) current, nothing selected.
    QTest::addColumn<int>("lines");
    QTest::addColumn<int>("policy");
    QTest::addColumn<bool>("framed"); // the current cell, in the link colour
    const int cells = int(SelectionPolicy::MultiCell);
    QTest::newRow("no lines") << int(NoLines) << cells << true;
    QTest::newRow("horizontal") << int(HorizontalLines) << cells << true;
    QTest::newRow("vertical") << int(VerticalLines) << cells << true;
    QTest::newRow("both; whole rows frame no cell") << int(AllLines) << int(SelectionPolicy::MultiRow) << false;
}

void tst_TableView::painting()
{
    QFETCH(int, lines);
    QFETCH(int, policy);
    GridTheme theme = GridTheme::light();
    theme.gridLine = QColor(255, 0, 0);
    m_view->setTheme(theme);
    m_view->options()->setAlternatingRowColors(false);
    m_view->options()->setGridLines(GridLines(lines));
    m_view->options()->setSelectionPolicy(SelectionPolicy(policy));
    m_view->activateWindow();
    m_view->setFocus();
    QTRY_VERIFY(m_view->hasFocus());
    m_view->setCurrentIndex(m_view->model()->index(1, 1));
    m_view->deselectAll();
    const QImage image = m_view->viewport()->grab().toImage();
    // Probes of another cell, away from its text: the bottom edge near the
    // left, the right edge near the top.
    const QRect cell = m_view->cellRect(0, 0);
    QCOMPARE(image.pixelColor(cell.left() + 1, cell.bottom()) == theme.gridLine, bool(lines & HorizontalLines));
    QCOMPARE(image.pixelColor(cell.right(), cell.top() + 1) == theme.gridLine, bool(lines & VerticalLines));
    QCOMPARE(image.pixelColor(cell.left() + 1, cell.top() + 1), theme.base);
    const QRect current = m_view->cellRect(1, 1);
    QTEST(image.pixelColor(current.left(), current.center().y()) == theme.link, "framed");
}

// What the delegate paints a cell with, as the view hands it over.
QStyleOptionViewItem tst_TableView::cellOption(int viewRow, int column) const
{
    QStyleOptionViewItem option;
    option.palette = m_view->palette();
    option.state = QStyle::State_Enabled;
    if (m_view->selectionModel()->isSelected(m_view->model()->index(viewRow, column)))
        option.state |= QStyle::State_Selected;
    auto *delegate = qobject_cast<CellDelegate *>(m_view->itemDelegate());
    delegate->initStyleOption(&option, m_view->model()->index(viewRow, column));
    return option;
}

void tst_TableView::cellAlignment_data()
{
    // The model knows its cells; the column's alignment stands in where the
    // model gives none (its caption follows it too, see the header suite).
    QTest::addColumn<int>("model"); // 0: the model gives none
    QTest::addColumn<int>("column"); // 0: unset
    QTest::addColumn<int>("painted");
    const int right = Qt::AlignRight | Qt::AlignVCenter;
    QTest::newRow("the model's beats the column's") << right << int(Qt::AlignCenter) << right;
    QTest::newRow("the column's where the model gives none") << 0 << int(Qt::AlignCenter) << int(Qt::AlignCenter);
    QTest::newRow("left without either") << 0 << 0 << int(Qt::AlignLeft | Qt::AlignVCenter);
}

void tst_TableView::cellAlignment()
{
    QFETCH(int, model);
    QFETCH(int, column);
    if (model)
        m_model->item(1, 1)->setTextAlignment(Qt::Alignment(model)); // view row 0
    m_view->column(1)->setTextAlignment(Qt::Alignment(column));
    QTEST(int(cellOption(0, 1).displayAlignment), "painted");
}

void tst_TableView::linkColoursFromThePalette()
{
    QPalette palette = m_view->palette();
    palette.setColor(QPalette::Link, QColor(Qt::red));
    palette.setColor(QPalette::LinkVisited, QColor(Qt::green));
    m_view->setPalette(palette);
    QCOMPARE(m_view->frozenView()->palette().color(QPalette::Link), QColor(Qt::red));
    QCOMPARE(cellOption(2, 2).palette.color(QPalette::Text), QColor(Qt::red));
    QCOMPARE(cellOption(2, 2).text, QStringLiteral("first"));
    QVERIFY(cellOption(2, 2).font.underline());

    const QRect cell = m_view->cellRect(2, 2);
    QTest::mouseClick(m_view->viewportOf(2), Qt::LeftButton, {}, QPoint(cell.left() + 8, cell.center().y()));
    QCOMPARE(cellOption(2, 2).palette.color(QPalette::Text), QColor(Qt::green));
    QCOMPARE(cellOption(0, 2).palette.color(QPalette::Text), QColor(Qt::red)); // another link
    QVERIFY(cellOption(0, 1).palette.color(QPalette::Text) != QColor(Qt::red)); // not a link
}

void tst_TableView::hoveredRow_data()
{
    QTest::addColumn<bool>("highlight");
    QTest::newRow("on") << true;
    QTest::newRow("off") << false;
}

void tst_TableView::hoveredRow()
{
    QFETCH(bool, highlight);
    m_view->options()->setHoverHighlight(highlight);
    m_view->options()->setAlternatingRowColors(false);
    m_view->column(0)->setFixedKind(FixedKind::Left);
    // Over the frozen part and over the scrolling part, the whole row is marked.
    QWidget *frozen = m_view->viewportOf(0);
    const QPoint over = m_view->cellRect(1, 0).center();
    QMouseEvent move(QEvent::MouseMove, over, frozen->mapToGlobal(over), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(frozen, &move);
    QCOMPARE(m_view->hoveredRow(), 1);
    const QColor hover = m_view->theme().hover;
    QCOMPARE(cellOption(1, 3).backgroundBrush.color() == hover, highlight);
    QCOMPARE(cellOption(1, 0).backgroundBrush.color() == hover, highlight);
    QVERIFY(cellOption(0, 3).backgroundBrush.color() != hover);
    const QRect cell = m_view->cellRect(1, 1);
    QCOMPARE(m_view->viewport()->grab().toImage().pixelColor(cell.right() - 3, cell.top() + 2) == hover, highlight);

    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(frozen, &leave);
    QCOMPARE(m_view->hoveredRow(), -1);
    QVERIFY(cellOption(1, 3).backgroundBrush.color() != hover);
}

void tst_TableView::contextMenu()
{
    BandedTableView view;
    view.setModel(m_model);
    Band *top = view.addBand(QStringLiteral("Top"));
    Band *sub = view.addBand(QStringLiteral("Sub"));
    Band *empty = view.addBand(QString());
    sub->setBandIndex(top->index());
    view.column(0)->setBandIndex(empty->index());
    view.column(1)->setBandIndex(sub->index());
    view.column(1)->setCaption(QStringLiteral("Name"));
    QCOMPARE(view.columnByCaption(QStringLiteral("Name")), view.column(1));
    view.options()->setSelectionPolicy(SelectionPolicy::MultiCell);
    QCOMPARE(view.captionPath(1), QStringLiteral("Top / Sub / Name"));
    QCOMPARE(view.captionPath(0), QStringLiteral("num"));

    std::unique_ptr<QMenu> menu(view.createContextMenu());
    QCOMPARE(menu->actions().size(), 4); // copy, with captions, a separator, select all
    QVERIFY(!menu->actions().at(0)->isEnabled());
    view.selectionModel()->select(QItemSelection(view.model()->index(0, 0), view.model()->index(1, 1)),
                                  QItemSelectionModel::Select);
    menu.reset(view.createContextMenu());
    menu->actions().at(0)->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("30\talpha\n10\tbeta"));
    menu->actions().at(1)->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("num\tTop / Sub / Name\n30\talpha\n10\tbeta"));
    menu->actions().at(3)->trigger();
    QCOMPARE(view.selectionModel()->selectedIndexes().size(), 12);

    // A right click opens the menu only where it is enabled.
    view.resize(400, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    const QPoint at = view.cellRect(0, 1).center();
    for (bool enabled : {false, true}) {
        view.options()->setContextMenuEnabled(enabled);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, view.viewport()->mapToGlobal(at));
        QCoreApplication::sendEvent(view.viewport(), &event);
        QMenu *shown = view.findChild<QMenu *>();
        QCOMPARE(shown != nullptr, enabled);
        if (shown) {
            QTRY_VERIFY(shown->isVisible());
            shown->close();
        }
    }

    // A rubber band follows a drag and selects what it covers.
    m_view->options()->setSelectionPolicy(SelectionPolicy::MultiCell);
    m_view->options()->setRubberBandSelection(true);
    QWidget *viewport = m_view->viewport();
    const QPoint from = m_view->cellRect(0, 0).center();
    const QPoint to = m_view->cellRect(2, 1).center();
    QTest::mousePress(viewport, Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, to, viewport->mapToGlobal(to), Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(viewport, &move);
    auto *band = viewport->findChild<QRubberBand *>();
    QVERIFY(band && band->isVisible());
    QCOMPARE(band->geometry(), QRect(from, to).normalized());
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, to);
    QVERIFY(!band->isVisible());
    QCOMPARE(m_view->selectedText(), QStringLiteral("10\tbeta\n20\tgamma\n30\talpha"));
}

void tst_TableView::selectionSummary_data()
{
    // Column 0 holds numbers to sort by (model rows 30, 10, 20 unless
    // given), the others texts; "1000" among them.
    QTest::addColumn<QVector<QRect>>("ranges"); // x: columns, y: view rows
    QTest::addColumn<IntList>("hidden");
    QTest::addColumn<int>("groupColumn");
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<int>("numbers");
    QTest::addColumn<QString>("text");
    using Ranges = QVector<QRect>;
    QTest::newRow("numbers") << Ranges{QRect(0, 0, 1, 3)} << IntList{} << -1 << QVariantList{} << 3
                             << "Count: 3    Sum: 60    Average: 20";
    QTest::newRow("texts are counted, not added, even when they read as numbers")
        << Ranges{QRect(0, 0, 2, 2)} << IntList{} << -1 << QVariantList{} << 2 << "Count: 4    Sum: 30    Average: 15";
    QTest::newRow("hidden columns are left out; no numbers: the count alone")
        << Ranges{QRect(0, 0, 4, 1)} << IntList{0} << -1 << QVariantList{} << 0 << "Count: 3";
    QTest::newRow("two blocks") << Ranges{QRect(0, 0, 1, 1), QRect(0, 2, 1, 1)} << IntList{} << -1 << QVariantList{}
                                << 2 << "Count: 2    Sum: 40    Average: 20";
    QTest::newRow("group rows are left out") << Ranges{QRect(0, 0, 1, 6)} << IntList{} << 1 << QVariantList{} << 3
                                             << "Count: 3    Sum: 60    Average: 20";
    QTest::newRow("nothing selected") << Ranges{} << IntList{} << -1 << QVariantList{} << 0 << "";
    QTest::newRow("separators, no trailing zeros") << Ranges{QRect(0, 1, 1, 2), QRect(1, 1, 1, 1)} << IntList{} << -1
                                                   << QVariantList{1235, 1234.5, 10} << 2
                                                   << "Count: 3    Sum: 2,469.5    Average: 1,234.75";
    QTest::newRow("at most four decimals") << Ranges{QRect(0, 0, 1, 3)} << IntList{} << -1 << QVariantList{1, 0, 0}
                                           << 3 << "Count: 3    Sum: 1    Average: 0.3333";
}

void tst_TableView::selectionSummary()
{
    QFETCH(QVector<QRect>, ranges);
    QFETCH(IntList, hidden);
    QFETCH(int, groupColumn);
    QFETCH(QVariantList, values);
    m_model->item(0, 1)->setText(QStringLiteral("1000"));
    for (int r = 0; r < values.size(); ++r)
        m_model->item(r, 0)->setData(values.at(r), Qt::UserRole);
    for (int c : hidden)
        m_view->column(c)->setVisible(false);
    if (groupColumn >= 0) {
        m_view->groupBy(groupColumn);
        m_view->expandAll();
    }
    for (const QRect &cells : ranges)
        select(cells);
    const SelectionSummary summary = m_view->selectionSummary();
    QTEST(summary.numbers, "numbers");
    QTEST(StatusLine::format(summary, GridTexts(), QLocale(QLocale::English, QLocale::UnitedStates)), "text");
}

void tst_TableView::gridAcrossViewTypes()
{
    Grid grid;
    QFont font = grid.font();
    font.setPointSize(15);
    grid.setFont(font);
    grid.setTheme(GridTheme::dark());
    grid.view()->setModel(m_model);
    grid.view()->column(0)->setSortRole(Qt::UserRole);
    StatusLine *line = grid.statusLine();
    line->setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    QVERIFY(!grid.isStatusLineVisible());
    grid.setStatusLineVisible(true);
    GridTexts texts;
    texts.count = QStringLiteral("N");
    grid.view()->options()->setTexts(texts);
    grid.view()->selectAll();
    QTRY_COMPARE(line->text(), QStringLiteral("N: 12    Sum: 60    Average: 20"));

    // A view of another type takes the grid's theme, font and status line,
    // which now reads the new view.
    QSignalSpy changed(&grid, &Grid::viewChanged);
    grid.setViewType(ViewType::BandedTable);
    QCOMPARE(changed.count(), 1);
    QVERIFY(grid.bandedView());
    QCOMPARE(grid.view()->theme(), GridTheme::dark());
    QCOMPARE(grid.view()->cellFont().pointSize(), 15);
    font.setPointSize(8);
    grid.setFont(font); // reaches the view, which keeps no font of its own
    QCOMPARE(grid.view()->cellFont().pointSize(), 8);
    QCOMPARE(grid.view()->verticalHeader()->defaultSectionSize(), grid.view()->rowHeight());
    grid.view()->setModel(m_model);
    QTRY_COMPARE(line->text(), QString());
    grid.view()->selectRow(1);
    QTRY_COMPARE(line->text(), QStringLiteral("Count: 4"));
}

QTEST_MAIN(tst_TableView)
#include "tst_tableview.moc"
