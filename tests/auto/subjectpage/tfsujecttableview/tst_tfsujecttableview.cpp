#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "mulittable/tfsujecttableview.h"

#include "bandgrid.h"
#include "tfcore/tfcore.h"
#include "tfcore/tfglobalcss.h"

#include <QApplication>
#include <QLabel>
#include <QTextBrowser>
#include <QTimer>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QtTest>

#include <memory>

namespace {

HeaderFieldInfo field(const QString &name, const QString &owner = QStringLiteral("0"),
                      const QString &columnType = QStringLiteral("BandedGridColumn"), int width = 80)
{
    HeaderFieldInfo info;
    info.fieldName = name;
    info.caption = name;
    info.ownerBand = owner;
    info.columnType = columnType;
    info.valueType = QStringLiteral("String");
    info.width = width;
    info.visible = true;
    return info;
}

// A tree written as "NAME/OWNER/COLUMNTYPE ..." (owner "0" by default), a
// band named before its columns.
TFTreeStruct *tree(const QString &layout)
{
    auto *root = new TFTreeStruct(QString());
    for (const QString &token : layout.split(QLatin1Char(' '))) {
        const QStringList parts = token.split(QLatin1Char('/'));
        const QString owner = parts.value(1, QStringLiteral("0"));
        TFTreeStruct *parent = owner == QLatin1String("0") ? root : root->findField(owner);
        parent->addChild(new TFTreeStruct(
            field(parts.at(0), owner, parts.value(2, QStringLiteral("BandedGridColumn")))));
    }
    return root;
}

TFTreeStruct *flatTree() { return tree(QStringLiteral("A B C")); }
// band Q over A and B, then a plain C
TFTreeStruct *bandedTree() { return tree(QStringLiteral("Q/0/Band A/Q B/Q C")); }
// band P over (band Q over A, B) and C; then a plain D
TFTreeStruct *deepTree() { return tree(QStringLiteral("P/0/Band Q/P/Band A/Q B/Q C/P D")); }

RowData rowOf(const QList<TFTreeStruct *> &leaves, int row, const QVariantMap &extra = {})
{
    RowData cells;
    for (const TFTreeStruct *leaf : leaves) {
        TFTableModelData::tagCellValue cell;
        cell.fieldName = leaf->info().fieldName;
        cell.valueType = QStringLiteral("String");
        cell.url = leaf->info().url;
        cell.value = QStringLiteral("%1%2").arg(leaf->info().fieldName).arg(row);
        cells.append(cell);
    }
    for (auto it = extra.cbegin(); it != extra.cend(); ++it) {
        TFTableModelData::tagCellValue cell;
        cell.fieldName = it.key();
        cell.value = it.value();
        cells.append(cell);
    }
    return cells;
}

struct Fixture
{
    explicit Fixture(TFTreeStruct *tree, int rows = 3, const QVariantMap &extra = {})
        : header(tree)
    {
        model.setHeader(header.get());
        QList<RowData> data;
        for (int r = 0; r < rows; ++r)
            data.append(rowOf(header->leaves(), r, extra));
        model.setRows(data);
        view.setModel(&model);
    }
    std::unique_ptr<TFTreeStruct> header;
    TFSubjectTableModel model;
    TFSujectTableView view;
};

QString bandName(const BandGrid::Band *band)
{
    return band ? band->property("fieldName").toString() : QStringLiteral("-");
}

} // namespace

class tst_TFSujectTableView : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { TFTableModelData::registerRowDataType(); }
    void init() { m_skin = TFCore::instance()->getCurrentSkinId(); }
    // The host's skin as it was, whatever a test left.
    void cleanup()
    {
        TFCore::instance()->setSkinsRoot(QString());
        if (TFCore::instance()->getCurrentSkinId() != m_skin)
            TFCore::instance()->setCurrentSkin(m_skin);
    }

    void layoutByDepth_data();
    void layoutByDepth();
    void columnWidth_data();
    void columnWidth();
    void editors();
    void frozenColumns_data();
    void frozenColumns();
    void linkColours();
    void groupColumn();
    void statusLineSumsSortValues();
    void substituteLink_data();
    void substituteLink();
    void editorLinkActivated_data();
    void editorLinkActivated();
    void focusRowEmitsClicked();
    void headerCaptionsFollowTree();
    void wheelFilter();

private:
    QString m_skin;
};

void tst_TFSujectTableView::layoutByDepth_data()
{
    QTest::addColumn<int>("tree");
    QTest::addColumn<QString>("hide");          // leaves hidden before the model is set
    QTest::addColumn<int>("depth");
    QTest::addColumn<bool>("banded");
    QTest::addColumn<QStringList>("bands");        // fieldName/caption/parent fieldName, "!" when hidden
    QTest::addColumn<QStringList>("columnBands");  // the band each column stands under, "!" when hidden

    QTest::newRow("depth 2: plain, no bands") << 0 << "" << 2 << false << QStringList() << QStringList{"-", "-", "-"};
    QTest::newRow("depth 3: a band and an empty one over the plain column")
        << 1 << "" << 3 << true << QStringList{"Q/Q/-", "C//-"} << QStringList{"Q", "Q", "C"};
    // A leaf binds to the band its owner names; only a top-level leaf
    // stands under the empty band made for it.
    const QStringList deepBands{"P/P/-", "D//-", "Q/Q/P", "C//P"};
    QTest::newRow("depth 4: nested bands, empty bands over higher leaves")
        << 2 << "" << 4 << true << deepBands << QStringList{"Q", "Q", "P", "D"};
    // A hidden leaf beside visible leaves: only the column goes; a top-level
    // leaf's own band goes with it; a band keeps its nested band's columns;
    // a nested band goes with all its leaves.
    QTest::newRow("hidden: leaf beside visible leaves") << 2 << "A" << 4 << true << deepBands
                                                        << QStringList{"Q!", "Q", "P", "D"};
    QTest::newRow("hidden: top-level leaf with its own band") << 2 << "D" << 4 << true
        << QStringList{"P/P/-", "D//-!", "Q/Q/P", "C//P"} << QStringList{"Q", "Q", "P", "D!"};
    QTest::newRow("hidden: leaf beside a nested band") << 2 << "C" << 4 << true << deepBands
                                                       << QStringList{"Q", "Q", "P!", "D"};
    QTest::newRow("hidden: all leaves of a nested band") << 2 << "A,B" << 4 << true
        << QStringList{"P/P/-", "D//-", "Q/Q/P!", "C//P"} << QStringList{"Q!", "Q!", "P", "D"};
}

void tst_TFSujectTableView::layoutByDepth()
{
    QFETCH(int, tree);
    QFETCH(QString, hide);
    QFETCH(int, depth);
    QFETCH(bool, banded);
    QFETCH(QStringList, bands);
    QFETCH(QStringList, columnBands);

    TFTreeStruct *root = tree == 0 ? flatTree() : tree == 1 ? bandedTree() : deepTree();
    const QStringList hidden = hide.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &name : hidden)
        root->findField(name)->info().visible = false;
    Fixture f(root);
    QCOMPARE(f.view.depth(), depth);
    QCOMPARE(f.view.grid()->viewType() == BandGrid::ViewType::BandedTable, banded);
    QCOMPARE(f.view.grid()->bandedView() != nullptr, banded);
    const QString gone = QStringLiteral("!");
    QStringList madeBands;
    for (int b = 0; b < f.view.view()->bandCount(); ++b) {
        const BandGrid::Band *band = f.view.view()->band(b);
        madeBands << QStringLiteral("%1/%2/%3").arg(bandName(band), band->caption(), bandName(band->parentBand()))
                         + (band->isVisible() ? QString() : gone);
        QCOMPARE(int(band->textAlignment()), int(Qt::AlignCenter));
    }
    QCOMPARE(madeBands, bands);
    QStringList madeColumnBands;
    for (int c = 0; c < f.view.view()->columnCount(); ++c) {
        const BandGrid::Column *column = f.view.view()->column(c);
        madeColumnBands << bandName(column->parentBand()) + (column->isVisible() ? QString() : gone);
    }
    QCOMPARE(madeColumnBands, columnBands);
    int count = -1;
    f.view.hideColumn(count);
    QCOMPARE(count, hidden.size());
}

void tst_TFSujectTableView::columnWidth_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("expected");
    QTest::newRow("given width") << 70 << 70;
    QTest::newRow("zero gives the default") << 0 << 104;
    QTest::newRow("other negative gives the default") << -1 << 104;
}

void tst_TFSujectTableView::columnWidth()
{
    QFETCH(int, width);
    QFETCH(int, expected);
    HeaderFieldInfo info = field("X");
    info.width = width;
    QCOMPARE(TFSujectTableView::columnWidth(info, QFont()), expected);
}

void tst_TFSujectTableView::editors()
{
    Fixture f(tree("LONGNAME L/0/hyperlinkedit MEMO/0/MEMOEXEDIT"));
    BandGrid::TableView *view = f.view.view();
    QCOMPARE(view->column(0)->editorKind(), BandGrid::EditorKind::Text);
    QCOMPARE(view->column(0)->buttonCount(), 0);
    QCOMPARE(view->column(1)->editorKind(), BandGrid::EditorKind::Link);
    // Applying the settings again adds no second button.
    const QList<HeaderFieldInfo *> records = f.header->leafRecords();
    f.view.applyColumnSettings(records);
    qDeleteAll(records);
    QCOMPARE(view->column(2)->buttonCount(), 1);

    // The memo button shows the cell in a box titled by the first six
    // characters of the row's first cell and the column's caption.
    QString title;
    QString text;
    QTimer::singleShot(0, this, [&] {
        if (QWidget *box = QApplication::activeModalWidget()) {
            if (auto *label = box->findChild<QLabel *>(QStringLiteral("lbTitle")))
                title = label->text();
            if (auto *browser = box->findChild<QTextBrowser *>(QStringLiteral("tbMsg")))
                text = browser->toPlainText();
            box->close();
        }
    });
    emit view->column(2)->buttonClicked(2, 2, 0);
    QCOMPARE(title, QStringLiteral("LONGNA-MEMO"));
    QCOMPARE(text, QStringLiteral("MEMO2"));
}

void tst_TFSujectTableView::linkColours()
{
    // A skin of its own, whose link colours are none of the grid's.
    QTemporaryDir skins;
    QVERIFY(QDir().mkpath(skins.filePath("white")));
    QFile ini(skins.filePath("white/skin.ini"));
    QVERIFY(ini.open(QIODevice::WriteOnly));
    ini.write("[Colors]\nlink=#aa0011\nlinkVisited=#11aa00\n");
    ini.close();
    TFCore::instance()->setSkinsRoot(skins.path());
    QVERIFY(TFCore::instance()->setCurrentSkin(QStringLiteral("white")));
    const QColor link = TFGlobalCss::getTipsColorByIndex(1);
    const QColor visited = TFGlobalCss::getTipsColorByIndex(2);
    QCOMPARE(link, QColor("#aa0011"));

    // As on the page: the grid goes into a holder under the skin's style
    // sheet before its model is set, and the sheet styles every table.
    QWidget page;
    page.setStyleSheet(QStringLiteral("QWidget { color: #1f2a37; } QTableView { background-color: #ffffff;"
                                      " selection-background-color: #cfe3f7; selection-color: #102030; }"));
    auto *holder = new QVBoxLayout(&page);
    std::unique_ptr<TFTreeStruct> header(tree("A L/0/HyperLinkEdit"));
    TFSubjectTableModel model;
    model.setHeader(header.get());
    auto *grid = new TFSujectTableView;
    holder->addWidget(grid);
    grid->setModel(&model);
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    page.setStyleSheet(page.styleSheet() + QStringLiteral(" QHeaderView { color: #1f2a37; }"));
    QCoreApplication::processEvents();

    // A new grid theme brings the grid's own link colours; the skin's stay.
    grid->grid()->setTheme(BandGrid::GridTheme::light());
    QCoreApplication::processEvents();
    BandGrid::TableView *view = grid->view();
    for (QTableView *table : {static_cast<QTableView *>(view), view->frozenView()}) {
        QCOMPARE(table->palette().color(QPalette::Link), link);
        QCOMPARE(table->palette().color(QPalette::LinkVisited), visited);
    }
    // The selection keeps the grid's own colours.
    QCOMPARE(view->theme().highlight, BandGrid::GridTheme::light().highlight);
}

void tst_TFSujectTableView::groupColumn()
{
    // Grouped by the last column when the one asked for does not exist; blue
    // captions on a light grey band with a grey rule.
    for (int asked : {99, -1}) {
        Fixture g(flatTree());
        g.view.setGroupColumn(asked);
        QCOMPARE(g.view.view()->groupColumn(), 2);
    }
    Fixture f(flatTree());
    f.view.setGroupColumn(-1);
    f.view.expandAll();
    QCOMPARE(f.view.view()->groupCount(), 3);
    QVERIFY(f.view.view()->isGroupExpanded(0));
    QCOMPARE(f.view.grid()->theme().groupText, QColor("#0060E3"));
    QCOMPARE(f.view.grid()->theme().groupBase, QColor("#F0F0F0"));
    QCOMPARE(f.view.grid()->theme().groupLine, QColor("#CCCCCC"));
}

void tst_TFSujectTableView::statusLineSumsSortValues()
{
    Fixture f(flatTree());
    QList<RowData> rows;
    const double values[] = {1234.5, 10, 0.25};
    for (int r = 0; r < 3; ++r) {
        rows << rowOf(f.header->leaves(), r);
        rows[r][1].valueType = QStringLiteral("Decimal");
        rows[r][1].value = values[r];
    }
    f.model.setRows(rows);
    f.view.setColumnsAlignment(Qt::AlignCenter);
    BandGrid::TableView *view = f.view.view();
    BandGrid::StatusLine *line = f.view.grid()->statusLine();
    QVERIFY(f.view.grid()->isStatusLineVisible());
    line->setLocale(QLocale(QLocale::English, QLocale::UnitedStates));
    view->selectionModel()->select(QItemSelection(view->model()->index(0, 0), view->model()->index(2, 1)),
                                   QItemSelectionModel::ClearAndSelect);
    // The shown texts carry group separators ("1,234.50"); the sum does not read them.
    QTRY_COMPARE(line->text(), QStringLiteral("计数: 6    求和: 1,244.75    平均值: 414.9167"));
    // Every caption centred; the cells keep the model's alignment.
    QCOMPARE(int(view->column(1)->textAlignment()), int(Qt::AlignCenter));
}

void tst_TFSujectTableView::substituteLink_data()
{
    QTest::addColumn<QString>("link");
    QTest::addColumn<QString>("a");
    QTest::addColumn<QString>("b");
    QTest::addColumn<QString>("expected");   // empty: only bounded (percent-encoded, so up to 3 characters each)

    QTest::newRow("no query: unchanged") << "view://x/${A}" << "1001" << "abc" << "view://x/${A}";
    QTest::newRow("one field") << "view:?objvwid=261&secu=${A}" << "1001" << "abc" << "view:?objvwid=261&secu=1001";
    QTest::newRow("two fields, the same twice") << "view:?a=${A}&b=${B}&c=${A}" << "1001" << "abc"
                                                << "view:?a=1001&b=abc&c=1001";
    QTest::newRow("field the row lacks becomes empty") << "view:?a=${NOPE}&b=1" << "1" << "2" << "view:?a=&b=1";
    QTest::newRow("a value is filled by a later name") << "view:?a=${A}&b=${B}" << "${B}" << "2" << "view:?a=2&b=2";
    QTest::newRow("values naming each other stay bounded") << "view:?q=" + QString("${A}${B}").repeated(16)
                                                         << "${B}${B}" << "${A}${A}" << QString();
}

void tst_TFSujectTableView::substituteLink()
{
    QFETCH(QString, link);
    QFETCH(QString, a);
    QFETCH(QString, b);
    QFETCH(QString, expected);
    if (expected.isEmpty())
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("link query would pass"));
    const QString filled = TFSujectTableView::substituteLink(link, {{"A", a}, {"B", b}});
    if (expected.isEmpty())
        QVERIFY2(filled.size() <= 4 * 65536 && filled.startsWith("view:?q="), qPrintable(QString::number(filled.size())));
    else
        QCOMPARE(filled, expected);
}

void tst_TFSujectTableView::editorLinkActivated_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("expected");

    QTest::newRow("no arguments: nothing") << QString() << QString();
    QTest::newRow("empty link role follows the anchor") << "" << "anchor";
    QTest::newRow("link with a row field, from a further cell")
        << "view:?objvwid=5&id=${SECU_ID}&name=${L}" << "view:?objvwid=5&id=77&name=L1";
}

void tst_TFSujectTableView::editorLinkActivated()
{
    QFETCH(QString, url);
    QFETCH(QString, expected);

    TFTreeStruct *root = tree("A L/0/HyperLinkEdit");
    root->findField("L")->info().url = url;
    Fixture f(root, 3, QVariantMap{{"SECU_ID", 77}});

    QSignalSpy spy(&f.view, &TFSujectTableView::linkActivated);
    EditorLinkEventArgs args(f.view.view()->column(1), 1, QStringLiteral("anchor"));
    if (url.isNull())
        QTest::ignoreMessage(QtWarningMsg, "this args is not vaild!!!");
    f.view.editorLinkActivated(url.isNull() ? nullptr : &args);
    QCOMPARE(spy.count(), expected.isNull() ? 0 : 1);
    if (!expected.isNull())
        QCOMPARE(spy.at(0).at(0).toString(), expected);
}

void tst_TFSujectTableView::focusRowEmitsClicked()
{
    Fixture f(bandedTree());
    QSignalSpy spy(&f.view, &TFSujectTableView::clicked);
    f.view.view()->setFocusedRow(2);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toInt(), 2);
}

void tst_TFSujectTableView::headerCaptionsFollowTree()
{
    Fixture f(flatTree());
    HeaderFieldInfo &info = f.header->leaves().at(1)->info();
    info.columnType = QStringLiteral("BandedGridColumnWithUnit");
    info.captionShowType = 1;
    info.showUnit = QStringLiteral("元");
    info.unitCategory = 1;
    f.header->updateUnit(QStringLiteral("万元"), 1);
    f.model.setHeader(f.header.get());
    QCOMPARE(f.view.view()->column(1)->caption(), QStringLiteral("B(万元)"));
    QCOMPARE(f.model.headerData(1, Qt::Horizontal), QVariant("B(万元)"));
    QCOMPARE(f.view.view()->column(0)->caption(), QStringLiteral("A"));
}

void tst_TFSujectTableView::frozenColumns_data()
{
    QTest::addColumn<bool>("banded");
    QTest::addColumn<QString>("call");     // "count N" or "vgrid FIELD"
    QTest::addColumn<QString>("frozen");   // the columns frozen at the left edge
    QTest::addColumn<bool>("changed");     // the form's look and selection (vgrid only)

    QTest::newRow("count 0") << false << "count 0" << "" << false;
    QTest::newRow("count negative") << false << "count -2" << "" << false;
    QTest::newRow("count 2") << false << "count 2" << "0,1" << false;
    QTest::newRow("count of all columns") << false << "count 3" << "0,1,2" << false;
    QTest::newRow("count over the columns does nothing") << false << "count 4" << "" << false;
    QTest::newRow("vgrid, empty name: nothing") << true << "vgrid " << "" << false;
    QTest::newRow("vgrid, banded: set up again, the field's column frozen") << true << "vgrid B" << "1" << true;
    QTest::newRow("vgrid, plain: the field's column frozen") << false << "vgrid C" << "2" << true;
    QTest::newRow("vgrid, unknown field: only the row look changes") << false << "vgrid NOPE" << "" << true;
}

void tst_TFSujectTableView::frozenColumns()
{
    QFETCH(bool, banded);
    QFETCH(QString, call);
    QFETCH(QString, frozen);
    QFETCH(bool, changed);

    Fixture f(banded ? bandedTree() : flatTree());
    const BandGrid::TableView *before = f.view.view();
    const QString argument = call.section(QLatin1Char(' '), 1);
    const bool vgrid = call.startsWith(QLatin1String("vgrid"));
    if (vgrid)
        f.view.setVGridHeader(argument);
    else
        f.view.setFrozenCount(argument.toInt());
    BandGrid::TableView *view = f.view.view();
    QCOMPARE(view != before, banded && changed);
    QStringList fixed;
    for (int c = 0; c < view->columnCount(); ++c) {
        const bool left = view->column(c)->fixedKind() == BandGrid::FixedKind::Left;
        // Frozen where it stands: shown at the left edge, over the scrolling part.
        QCOMPARE(view->isColumnFrozen(c), left);
        if (left)
            fixed << QString::number(c);
    }
    QCOMPARE(fixed.join(','), frozen);
    QCOMPARE(view->frozenColumnCount(), fixed.size());
    if (vgrid && !frozen.isEmpty())
        QCOMPARE(view->horizontalHeader()->visualIndex(frozen.toInt()), 0);
    QCOMPARE(view->alternatingRowColors(), !changed);
    QCOMPARE(view->selectionBehavior() == QAbstractItemView::SelectItems, changed);
    QCOMPARE(view->options()->gridLines() == BandGrid::GridLines(BandGrid::HorizontalLines), vgrid && !frozen.isEmpty());
}

void tst_TFSujectTableView::wheelFilter()
{
    TFSujectTableView view;
    QWheelEvent wheel(QPointF(1, 1), QPointF(1, 1), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QEvent other(QEvent::MouseButtonPress);
    QVERIFY(view.eventFilter(&view, &wheel));
    QVERIFY(!view.eventFilter(&view, &other));
}

QTEST_MAIN(tst_TFSujectTableView)
#include "tst_tfsujecttableview.moc"
