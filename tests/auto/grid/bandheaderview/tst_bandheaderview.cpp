#include "bandgrid.h"

#include <QScrollBar>
#include <QStandardItemModel>

#include <climits>
#include <QtTest>

using namespace BandGrid;

// Band trees as data: the parent of each band (-1 for a top band) and the
// band of each column (-1 for none).
using IntList = QVector<int>;
struct Span
{
    int x, width, level;
    bool operator==(const Span &o) const { return x == o.x && width == o.width && level == o.level; }
};
Q_DECLARE_METATYPE(Span)
Q_DECLARE_METATYPE(QVector<Span>)
namespace QTest {
template<> char *toString(const Span &s) { return qstrdup(qPrintable(QStringLiteral("(x %1, width %2, level %3)").arg(s.x).arg(s.width).arg(s.level))); }
}

class tst_BandHeaderView : public QObject
{
    Q_OBJECT
private slots:
    void geometry_data();
    void geometry();
    void bandNestingRefusesCycles();
    void pressOnBandDoesNotSort();
    void captionAlignment_data();
    void captionAlignment();

private:
    static void build(BandedTableView &view, QStandardItemModel &model, const IntList &parents,
                      const IntList &columnBands, const IntList &widths);
};

void tst_BandHeaderView::build(BandedTableView &view, QStandardItemModel &model,
                               const IntList &parents, const IntList &columnBands,
                               const IntList &widths)
{
    model.setColumnCount(columnBands.size());
    model.setRowCount(3);
    view.setModel(&model);
    for (int b = 0; b < parents.size(); ++b)
        view.addBand(QStringLiteral("band %1").arg(b));
    for (int b = 0; b < parents.size(); ++b)
        QVERIFY(view.band(b)->setBandIndex(parents.at(b)));
    for (int c = 0; c < columnBands.size(); ++c) {
        QVERIFY(view.column(c)->setBandIndex(columnBands.at(c)));
        view.column(c)->setWidth(widths.at(c));
    }
}

void tst_BandHeaderView::geometry_data()
{
    QTest::addColumn<IntList>("parents");
    QTest::addColumn<IntList>("columnBands");
    QTest::addColumn<IntList>("hiddenColumns");
    QTest::addColumn<IntList>("hiddenBands");
    QTest::addColumn<QVector<Span>>("bands");       // (0, 0, level): not shown
    QTest::addColumn<int>("bandRows");
    QTest::addColumn<IntList>("columnTopRows");      // caption row each column starts at, -1: hidden

    QTest::newRow("two top bands")
        << IntList{-1, -1} << IntList{0, 0, 1, 1, 1} << IntList{} << IntList{}
        << QVector<Span>{{0, 110, 0}, {110, 240, 0}} << 1 << IntList{1, 1, 1, 1, 1};
    QTest::newRow("column without band takes full height")
        << IntList{-1} << IntList{0, 0, -1, 0, -1} << IntList{} << IntList{}
        << QVector<Span>{{0, 260, 0}} << 1 << IntList{1, 1, 0, 1, 0};
    QTest::newRow("depth two")
        << IntList{-1, 0, 0} << IntList{1, 1, 2, 2, -1} << IntList{} << IntList{}
        << QVector<Span>{{0, 260, 0}, {0, 110, 1}, {110, 150, 1}} << 2 << IntList{2, 2, 2, 2, 0};
    QTest::newRow("depth three, leaves at every level")
        << IntList{-1, 0, 1} << IntList{2, 2, 1, 0, -1} << IntList{} << IntList{}
        << QVector<Span>{{0, 260, 0}, {0, 180, 1}, {0, 110, 2}} << 3 << IntList{3, 3, 2, 1, 0};
    QTest::newRow("depth four")
        << IntList{-1, 0, 1, 2} << IntList{3, 3, 3, 2, 1} << IntList{} << IntList{}
        << QVector<Span>{{0, 350, 0}, {0, 350, 1}, {0, 260, 2}, {0, 180, 3}} << 4
        << IntList{4, 4, 4, 3, 2};
    QTest::newRow("hidden column shrinks its band")
        << IntList{-1} << IntList{0, 0, 0, -1, -1} << IntList{1} << IntList{}
        << QVector<Span>{{0, 120, 0}} << 1 << IntList{1, -1, 1, 0, 0};
    QTest::newRow("hidden leaf with visible siblings keeps the band")
        << IntList{-1, 0, 0} << IntList{1, 1, 2, 2, -1} << IntList{2} << IntList{}
        << QVector<Span>{{0, 190, 0}, {0, 110, 1}, {110, 80, 1}} << 2 << IntList{2, 2, -1, 2, 0};
    QTest::newRow("all columns of a band hidden hide it")
        << IntList{-1, -1} << IntList{0, 0, 1, 1, 1} << IntList{0, 1} << IntList{}
        << QVector<Span>{{0, 0, 0}, {0, 240, 0}} << 1 << IntList{-1, -1, 1, 1, 1};
    QTest::newRow("all columns of a nested band hidden drop a caption row")
        << IntList{-1, 0} << IntList{1, 1, -1, -1, -1} << IntList{0, 1} << IntList{}
        << QVector<Span>{{0, 0, 0}, {0, 0, 1}} << 0 << IntList{-1, -1, 0, 0, 0};
    QTest::newRow("hidden band hides its columns and nested bands")
        << IntList{-1, 0, -1} << IntList{1, 1, 0, 2, 2} << IntList{} << IntList{0}
        << QVector<Span>{{0, 0, 0}, {0, 0, 1}, {0, 170, 0}} << 1 << IntList{-1, -1, -1, 1, 1};
}

void tst_BandHeaderView::geometry()
{
    QFETCH(IntList, parents);
    QFETCH(IntList, columnBands);
    QFETCH(IntList, hiddenColumns);
    QFETCH(IntList, hiddenBands);
    QFETCH(int, bandRows);
    const IntList widths{50, 60, 70, 80, 90};
    QStandardItemModel model;
    BandedTableView view;
    build(view, model, parents, columnBands, widths);
    for (int c : hiddenColumns)
        view.column(c)->setVisible(false);
    for (int b : hiddenBands)
        view.band(b)->setVisible(false);
    view.resize(800, 300);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));

    BandHeaderView *header = view.bandHeader();
    const int rowHeight = header->captionRowHeight();
    QCOMPARE(view.bandRowCount(), bandRows);
    QCOMPARE(header->height(), (bandRows + 1) * rowHeight);
    QVector<Span> bands;
    for (int b = 0; b < parents.size(); ++b) {
        const QRect rect = header->bandRect(b);
        QCOMPARE(rect.isEmpty(), !view.band(b)->isShown());
        // A shown band fills one caption row, the row of its level.
        QVERIFY(rect.isEmpty() || (rect.height() == rowHeight && rect.y() == view.band(b)->level() * rowHeight));
        bands << Span{rect.isEmpty() ? 0 : rect.x(), rect.width(), view.band(b)->level()};
    }
    QTEST(bands, "bands");
    IntList topRows;
    for (int c = 0; c < columnBands.size(); ++c) {
        const QRect rect = header->sectionRect(c);
        QCOMPARE(rect.isEmpty(), view.isColumnHidden(c));
        QVERIFY(rect.isEmpty() || (rect.width() == widths.at(c) && rect.bottom() == header->height() - 1));
        topRows << (rect.isEmpty() ? -1 : rect.top() / rowHeight);
    }
    QTEST(topRows, "columnTopRows");
}

void tst_BandHeaderView::bandNestingRefusesCycles()
{
    QStandardItemModel model(1, 2);
    BandedTableView view;
    view.setModel(&model);
    Band *top = view.addBand(QStringLiteral("top"));
    Band *middle = view.addBand(QStringLiteral("middle"));
    Band *bottom = view.addBand(QStringLiteral("bottom"));
    QVERIFY(middle->setBandIndex(top->index()));
    QVERIFY(bottom->setBandIndex(middle->index()));
    QVERIFY(!top->setBandIndex(bottom->index()));
    QVERIFY(!top->setBandIndex(top->index()));
    QVERIFY(!view.column(0)->setBandIndex(7));
    QCOMPARE(top->parentBand(), nullptr);
    QVERIFY(bottom->isDescendantOf(top));
    QVERIFY(!top->isDescendantOf(bottom));
    QVERIFY(bottom->isBottomBand());
    QVERIFY(!middle->isBottomBand());
    QCOMPARE(bottom->level(), 2);
    QCOMPARE(view.band(3), nullptr);
    QCOMPARE(view.column(2), nullptr);
}

void tst_BandHeaderView::pressOnBandDoesNotSort()
{
    QStandardItemModel model;
    BandedTableView view;
    build(view, model, IntList{-1}, IntList{0, 0}, IntList{80, 80});
    view.resize(300, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QSignalSpy sorted(&view, &TableView::sortChanged);
    BandHeaderView *header = view.bandHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, header->bandRect(0).center());
    QCOMPARE(sorted.count(), 0);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, header->sectionRect(0).center());
    QCOMPARE(sorted.count(), 1);
    QCOMPARE(view.sortColumn(), 0);
    QCOMPARE(view.sortOrder(), Qt::AscendingOrder);
}

// The leftmost and rightmost columns of dark pixels of a caption within a
// rectangle.
static QPair<int, int> ink(const QImage &image, const QRect &rect)
{
    QPair<int, int> span(INT_MAX, INT_MIN);
    for (int y = rect.top() + 2; y < rect.bottom() - 1; ++y) {
        for (int x = rect.left() + 2; x < rect.right() - 1; ++x) {
            if (image.pixelColor(x, y).lightness() < 140)
                span = {qMin(span.first, x), qMax(span.second, x)};
        }
    }
    return span;
}

void tst_BandHeaderView::captionAlignment_data()
{
    // Band captions are centred over the part of the band in sight; a
    // column's caption follows the column's alignment, centred without one.
    QTest::addColumn<bool>("band");
    QTest::addColumn<int>("alignment");
    QTest::addColumn<int>("frozen");
    QTest::addColumn<int>("scroll");
    QTest::addColumn<int>("side"); // -1 left, 0 centre, 1 right
    QTest::newRow("band, not scrolled") << true << 0 << 0 << 0 << 0;
    QTest::newRow("band, scrolled") << true << 0 << 0 << 70 << 0;
    QTest::newRow("band half under frozen columns") << true << 0 << 1 << 120 << 0;
    QTest::newRow("column without alignment") << false << 0 << 0 << 0 << 0;
    QTest::newRow("column aligned left") << false << int(Qt::AlignLeft | Qt::AlignVCenter) << 0 << 0 << -1;
    QTest::newRow("column aligned right") << false << int(Qt::AlignRight | Qt::AlignVCenter) << 0 << 0 << 1;
}

void tst_BandHeaderView::captionAlignment()
{
    QFETCH(bool, band);
    QFETCH(int, alignment);
    QFETCH(int, frozen);
    QFETCH(int, scroll);
    QFETCH(int, side);
    QStandardItemModel model;
    BandedTableView view;
    // Column 0 alone, then a band over columns 1 to 3, then room to scroll.
    build(view, model, IntList{-1}, IntList{-1, 0, 0, 0, -1, -1}, IntList{100, 90, 70, 80, 300, 300});
    view.band(0)->setCaption(QStringLiteral("Quotes"));
    view.column(0)->setCaption(QStringLiteral("Code"));
    view.column(0)->setTextAlignment(Qt::Alignment(alignment));
    for (int c = 0; c < frozen; ++c)
        view.column(c)->setFixedKind(FixedKind::Left);
    view.resize(500, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    view.horizontalScrollBar()->setValue(scroll);
    QCOMPARE(view.horizontalScrollBar()->value(), scroll);

    BandHeaderView *header = view.bandHeader();
    QRect seen = header->sectionRect(0);
    if (band) {
        const QRect rect = header->bandRect(0);
        QCOMPARE(rect.width(), 240);
        QCOMPARE(rect.left(), 100 - scroll);
        // What is in sight of the band: right of the frozen columns.
        seen = rect.adjusted(qMax(0, view.frozenWidth() - rect.left()), 0, 0, 0);
    }
    const QPair<int, int> span = ink(header->viewport()->grab().toImage(), seen);
    QVERIFY(span.first <= span.second);
    const int offset = side < 0 ? span.first - seen.left() : side > 0 ? seen.right() - span.second
                                                                      : qAbs(span.first + span.second - seen.left() - seen.right()) / 2;
    QVERIFY2(offset <= (side ? 8 : 3), qPrintable(QStringLiteral("ink from %1 to %2 in %3 to %4")
                                                          .arg(span.first).arg(span.second).arg(seen.left()).arg(seen.right())));
}

QTEST_MAIN(tst_BandHeaderView)
#include "tst_bandheaderview.moc"
