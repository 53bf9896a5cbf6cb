#include "bandgrid.h"

#include <QScrollBar>
#include <QStandardItemModel>
#include <QtTest>

using namespace BandGrid;

class tst_FrozenColumnsView : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void frozenAtTheLeftEdge_data();
    void frozenAtTheLeftEdge();
    void bandOverAFrozenColumn();
    void overlayFollowsTheTable();
    void keyboardKeepsCurrentCellOutFromUnderOverlay();
    void clickInOverlaySelectsSharedRow();

private:
    QStandardItemModel *m_model = nullptr;
    TableView *m_view = nullptr;
    static const int kColumns = 12;
    static const int kWidth = 80;
};

void tst_FrozenColumnsView::init()
{
    m_model = new QStandardItemModel(200, kColumns);
    for (int r = 0; r < 200; ++r)
        for (int c = 0; c < kColumns; ++c)
            m_model->setItem(r, c, new QStandardItem(QStringLiteral("r%1c%2").arg(r).arg(c)));
    m_view = new TableView;
    m_view->setModel(m_model);
    for (int c = 0; c < kColumns; ++c)
        m_view->column(c)->setWidth(kWidth);
    m_view->resize(500, 300);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view));
}

void tst_FrozenColumnsView::cleanup()
{
    delete m_view;
    delete m_model;
}

void tst_FrozenColumnsView::frozenAtTheLeftEdge_data()
{
    QTest::addColumn<QVector<int>>("frozen");
    QTest::addColumn<int>("sideways");
    QTest::addColumn<int>("down");
    QTest::newRow("none") << QVector<int>{} << 150 << 0;
    QTest::newRow("one, not scrolled") << QVector<int>{0} << 0 << 0;
    QTest::newRow("one, scrolled") << QVector<int>{0} << 150 << 0;
    QTest::newRow("two, scrolled to the end") << QVector<int>{0, 1} << 100000 << 0;
    QTest::newRow("three, scrolled by a pixel") << QVector<int>{0, 1, 2} << 1 << 0;
    QTest::newRow("a column in the middle") << QVector<int>{3} << 150 << 0;
    QTest::newRow("two apart, scrolled both ways") << QVector<int>{2, 7} << 200 << 400;
    QTest::newRow("first and last, scrolled to the ends") << QVector<int>{0, 11} << 100000 << 100000;
}

void tst_FrozenColumnsView::frozenAtTheLeftEdge()
{
    QFETCH(QVector<int>, frozen);
    QFETCH(int, sideways);
    QFETCH(int, down);
    for (int c : frozen)
        m_view->column(c)->setFixedKind(FixedKind::Left);
    QCOMPARE(m_view->frozenColumnCount(), frozen.size());
    QCOMPARE(m_view->frozenWidth(), frozen.size() * kWidth);
    m_view->horizontalScrollBar()->setValue(sideways);
    m_view->verticalScrollBar()->setValue(down);
    QCoreApplication::processEvents();
    const int scrolled = m_view->horizontalScrollBar()->value();
    QVERIFY(scrolled > 0 || sideways == 0);

    QTableView *overlay = m_view->frozenView();
    QCOMPARE(overlay->isVisible(), !frozen.isEmpty());
    if (frozen.isEmpty()) {
        QCOMPARE(m_view->viewportOf(0), m_view->viewport());
        return;
    }
    QCOMPARE(overlay->geometry().left(), m_view->viewport()->geometry().left());
    QCOMPARE(overlay->width(), frozen.size() * kWidth);
    QCOMPARE(overlay->horizontalHeader()->height(), m_view->horizontalHeader()->height());
    QCOMPARE(overlay->verticalScrollBar()->value(), m_view->verticalScrollBar()->value());
    const int row = m_view->rowAt(m_view->viewport()->height() / 2);
    QVERIFY(row > 0 || down == 0);
    int firstScrolling = 0;
    while (frozen.contains(firstScrolling))
        ++firstScrolling;
    const QRect scrolling = m_view->cellRect(row, firstScrolling);
    for (int c = 0; c < kColumns; ++c) {
        const int i = frozen.indexOf(c);
        QCOMPARE(overlay->isColumnHidden(c), i < 0);
        if (i < 0)
            continue;
        // In the model's order at the left edge, caption over cell, row beside row.
        QCOMPARE(m_view->viewportOf(c), overlay->viewport());
        QCOMPARE(m_view->cellRect(row, c).left(), i * kWidth);
        QCOMPARE(overlay->horizontalHeader()->sectionViewportPosition(c), i * kWidth);
        QCOMPARE(m_view->cellRect(row, c).top(), scrolling.top());
    }
    // What shows there is the frozen cell, whatever scrolled beneath it.
    m_model->item(row, frozen.last())->setBackground(QColor(Qt::red));
    const QRect last = m_view->cellRect(row, frozen.last());
    const QPoint probe = m_view->viewportOf(frozen.last())->mapTo(m_view, last.topRight() + QPoint(-3, 3));
    QCOMPARE(m_view->grab().toImage().pixelColor(probe), QColor(Qt::red));

    // The rest scrolls under the overlay from its edge.
    QCOMPARE(scrolling.left(), frozen.size() * kWidth - scrolled);
    QCOMPARE(m_view->horizontalHeader()->sectionViewportPosition(firstScrolling), scrolling.left());

    // Thawed, every column is back in the model's order.
    for (int c : frozen)
        m_view->column(c)->setFixedKind(FixedKind::None);
    QVERIFY(!overlay->isVisible());
    for (int c = 0; c < kColumns; ++c)
        QCOMPARE(m_view->horizontalHeader()->visualIndex(c), c);
}

void tst_FrozenColumnsView::bandOverAFrozenColumn()
{
    // A band over columns 2 to 4, nested in one over 1 to 4, of which 3 is
    // frozen: the overlay shows the bands over 3, the table over the rest,
    // side by side, under headers of one height.
    BandedTableView view;
    view.setModel(m_model);
    for (int c = 0; c < kColumns; ++c)
        view.column(c)->setWidth(kWidth);
    Band *outer = view.addBand(QStringLiteral("outer"));
    Band *band = view.addBand(QStringLiteral("band"));
    band->setBandIndex(outer->index());
    view.column(1)->setBandIndex(outer->index());
    for (int c = 2; c <= 4; ++c)
        view.column(c)->setBandIndex(band->index());
    view.column(3)->setFixedKind(FixedKind::Left);
    view.resize(500, 300);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    auto *overlayHeader = static_cast<BandHeaderView *>(view.frozenView()->horizontalHeader());
    QCOMPARE(overlayHeader->height(), view.bandHeader()->height());
    const int rowHeight = overlayHeader->captionRowHeight();
    QCOMPARE(overlayHeader->bandRect(1), QRect(0, rowHeight, kWidth, rowHeight));
    QCOMPARE(overlayHeader->bandRect(0), QRect(0, 0, kWidth, rowHeight));
    const QRect scrolling = view.bandHeader()->bandRect(1);
    QCOMPARE(scrolling.left(), view.bandHeader()->sectionViewportPosition(2));
    QCOMPARE(scrolling.width(), 2 * kWidth);
    QCOMPARE(view.bandHeader()->bandRect(0).width(), 3 * kWidth);
}

void tst_FrozenColumnsView::overlayFollowsTheTable()
{
    for (int c = 0; c < 3; ++c)
        m_view->column(c)->setFixedKind(FixedKind::Left);
    // A hidden frozen column narrows the overlay.
    m_view->column(1)->setVisible(false);
    QCOMPARE(m_view->frozenWidth(), 2 * kWidth);
    QCOMPARE(m_view->frozenView()->width(), 2 * kWidth);
    QCOMPARE(m_view->cellRect(0, 2).left(), kWidth);
    m_view->column(0)->setWidth(30);
    QCOMPARE(m_view->frozenView()->width(), 30 + kWidth);
    // A resize in the overlay reaches the table.
    m_view->frozenView()->horizontalHeader()->resizeSection(0, 140);
    QCOMPARE(m_view->columnWidth(0), 140);
    QCOMPARE(m_view->column(0)->width(), 140);
    QCOMPARE(m_view->frozenView()->width(), 140 + kWidth);
    // Rows scroll together, whichever part is scrolled.
    m_view->verticalScrollBar()->setValue(500);
    QCOMPARE(m_view->frozenView()->verticalScrollBar()->value(), 500);
    m_view->frozenView()->verticalScrollBar()->setValue(120);
    QCOMPARE(m_view->verticalScrollBar()->value(), 120);
}

void tst_FrozenColumnsView::keyboardKeepsCurrentCellOutFromUnderOverlay()
{
    m_view->column(0)->setFixedKind(FixedKind::Left);
    m_view->column(1)->setFixedKind(FixedKind::Left);
    m_view->setFocus();
    m_view->setCurrentIndex(m_view->model()->index(0, 8));
    QVERIFY(m_view->horizontalScrollBar()->value() > 0);
    for (int c = 8; c > 2; --c)
        QTest::keyClick(m_view, Qt::Key_Left);
    QCOMPARE(m_view->currentIndex().column(), 2);
    QVERIFY(m_view->visualRect(m_view->currentIndex()).left() >= m_view->frozenWidth());
}

void tst_FrozenColumnsView::clickInOverlaySelectsSharedRow()
{
    m_view->column(0)->setFixedKind(FixedKind::Left);
    m_view->horizontalScrollBar()->setValue(200);
    QSignalSpy focus(m_view, &TableView::focusRowChanged);
    QTest::mouseClick(m_view->viewportOf(0), Qt::LeftButton, {}, m_view->cellRect(3, 0).center());
    QCOMPARE(m_view->currentIndex().row(), 3);
    QVERIFY(m_view->selectionModel()->isRowSelected(3, QModelIndex()));
    QCOMPARE(focus.count(), 1);
    QCOMPARE(focus.at(0).at(1).toInt(), 3);
    // A frozen cell never scrolls the table sideways.
    QCOMPARE(m_view->horizontalScrollBar()->value(), 200);
}

QTEST_MAIN(tst_FrozenColumnsView)
#include "tst_frozencolumnsview.moc"
