#include "bandgrid.h"

#include <QScrollBar>
#include <QStandardItemModel>
#include <QtTest>

using namespace BandGrid;

using Steps = QVector<QPair<int, int>>;

// Rows of (industry, name, value); the view groups by industry.
class tst_GroupProxyModel : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void rowCounts_data();
    void rowCounts();
    void groupsInOrderWithCounts();
    void captionRunsAcrossTheRow_data();
    void captionRunsAcrossTheRow();
    void rowsInsideGroupFollowSort();
    void expandedGroupsSurviveSort();
    void expanderClickToggles();
    void keysOpenAndShutGroups();
    void groupedColumnHiddenWhenAsked();
    void disabledGroupingRefuses();
    void endingGroupingRestoresRows();
    void changedTextMovesRowToItsGroup();

private:
    QStandardItemModel *m_model = nullptr;
    TableView *m_view = nullptr;
};

void tst_GroupProxyModel::init()
{
    const QList<QStringList> rows{
        {"银行", "平安银行", "3"}, {"地产", "万科", "1"}, {"银行", "招商银行", "5"},
        {"电子", "京东方", "2"}, {"地产", "保利", "4"}, {"银行", "兴业银行", "0"}};
    m_model = new QStandardItemModel(rows.size(), 3);
    m_model->setHorizontalHeaderLabels({"行业", "名称", "数值"});
    for (int r = 0; r < rows.size(); ++r) {
        for (int c = 0; c < 3; ++c)
            m_model->setItem(r, c, new QStandardItem(rows.at(r).at(c)));
        m_model->item(r, 2)->setData(rows.at(r).at(2).toInt(), Qt::UserRole);
    }
    m_view = new TableView;
    m_view->setSortLocale(QLocale(QLocale::Chinese, QLocale::China));
    m_view->setModel(m_model);
    m_view->column(2)->setSortRole(Qt::UserRole);
    m_view->resize(400, 300);
    m_view->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_view));
    m_view->column(0)->setGroupIndex(0);
}

void tst_GroupProxyModel::cleanup()
{
    delete m_view;
    delete m_model;
}

void tst_GroupProxyModel::rowCounts_data()
{
    // Groups in pinyin order: 地产 (2 rows), 电子 (1), 银行 (3). Each step is
    // a group and whether to open (1), shut (0), open all (2) or shut all (3).
    QTest::addColumn<Steps>("steps");
    QTest::addColumn<int>("rows");
    QTest::newRow("all shut at first") << Steps{} << 3;
    QTest::newRow("open one") << Steps{{2, 1}} << 6;
    QTest::newRow("open two") << Steps{{2, 1}, {0, 1}} << 8;
    QTest::newRow("expand all") << Steps{{-1, 2}} << 9;
    QTest::newRow("expand all, shut one") << Steps{{-1, 2}, {2, 0}} << 6;
    QTest::newRow("open twice is once") << Steps{{1, 1}, {1, 1}} << 4;
    QTest::newRow("no such group") << Steps{{7, 1}, {-1, 1}} << 3;
    QTest::newRow("collapse all") << Steps{{-1, 2}, {-1, 3}} << 3;
}

void tst_GroupProxyModel::rowCounts()
{
    QFETCH(Steps, steps);
    QFETCH(int, rows);
    for (const auto &step : steps) {
        if (step.second == 2)
            m_view->expandAll();
        else if (step.second == 3)
            m_view->collapseAll();
        else
            m_view->setGroupExpanded(step.first, step.second == 1);
    }
    QCOMPARE(m_view->viewRowCount(), rows);
    int groupRows = 0;
    for (int r = 0; r < m_view->viewRowCount(); ++r)
        groupRows += m_view->isGroupRow(r) ? 1 : 0;
    QCOMPARE(groupRows, 3);
}

void tst_GroupProxyModel::groupsInOrderWithCounts()
{
    QCOMPARE(m_view->groupCount(), 3);
    QCOMPARE(m_view->groupCaption(0), QStringLiteral("行业: 地产  (2)"));
    QCOMPARE(m_view->groupCaption(1), QStringLiteral("行业: 电子  (1)"));
    QCOMPARE(m_view->groupCaption(2), QStringLiteral("行业: 银行  (3)"));
    QCOMPARE(m_view->model()->index(2, 0).data(GroupCountRole).toInt(), 3);
    QCOMPARE(m_view->sourceRow(0), -1);
    m_view->expandAll();
    // 地产: rows 1 and 4 of the model, in their order.
    QCOMPARE(m_view->sourceRow(1), 1);
    QCOMPARE(m_view->sourceRow(2), 4);
    QCOMPARE(m_view->viewRow(4), 2);
    QVERIFY(m_view->isGroupRow(3));
    QCOMPARE(m_view->groupCaption(4), QStringLiteral("行业: 电子  (1)"));
}

// The columns that hold pixels darker than the group row's background.
static QVector<int> inkColumns(const QImage &image, int top, int bottom)
{
    QVector<int> xs;
    for (int x = 0; x < image.width(); ++x) {
        for (int y = top + 2; y < bottom - 1; ++y) {
            if (image.pixelColor(x, y).lightness() < 170) {
                xs << x;
                break;
            }
        }
    }
    return xs;
}

void tst_GroupProxyModel::captionRunsAcrossTheRow_data()
{
    QTest::addColumn<int>("frozen");
    QTest::addColumn<int>("scroll");
    QTest::newRow("plain") << 0 << 0;
    QTest::newRow("scrolled sideways") << 0 << 200;
    QTest::newRow("narrow frozen column") << 1 << 0;
    QTest::newRow("narrow frozen column, scrolled") << 1 << 200;
}

void tst_GroupProxyModel::captionRunsAcrossTheRow()
{
    QFETCH(int, frozen);
    QFETCH(int, scroll);
    // A first column narrower than the caption, and room to scroll.
    m_view->column(0)->setWidth(30);
    m_view->column(1)->setWidth(300);
    m_view->column(2)->setWidth(300);
    m_view->setCurrentIndex(QModelIndex());
    m_view->deselectAll();
    const QPoint origin = m_view->viewport()->mapTo(m_view, QPoint(0, 0));
    const QRect row = m_view->cellRect(0, 0).translated(origin);
    const QImage plain = m_view->grab().toImage();

    if (frozen)
        m_view->column(0)->setFixedKind(FixedKind::Left);
    m_view->horizontalScrollBar()->setValue(scroll);
    QCOMPARE(m_view->horizontalScrollBar()->value(), scroll);
    const QImage image = m_view->grab().toImage();

    const QVector<int> ink = inkColumns(image, row.top(), row.bottom());
    QVERIFY(!ink.isEmpty());
    // The expander at the left edge whatever the scroll, and the caption
    // running on past the narrow first column.
    QVERIFY2(ink.first() - origin.x() < 18, qPrintable(QString::number(ink.first())));
    QVERIFY(ink.last() - origin.x() > 30 + 40);
    // Frozen or scrolled, the row shows what it shows unscrolled: the
    // overlay and the table meet without a seam (but for the overlay's edge).
    const int edge = frozen ? origin.x() + m_view->frozenWidth() - 1 : -1;
    for (int x = origin.x(); x < origin.x() + 200; ++x) {
        if (x == edge)
            continue;
        for (int y = row.top(); y < row.bottom(); ++y) {
            if (image.pixel(x, y) != plain.pixel(x, y))
                QFAIL(qPrintable(QStringLiteral("differs at %1,%2").arg(x).arg(y)));
        }
    }
}

void tst_GroupProxyModel::rowsInsideGroupFollowSort()
{
    m_view->expandAll();
    m_view->sortBy(2, Qt::DescendingOrder);
    // 银行 holds values 3, 5, 0; it is the third group, after 2 + 1 rows.
    const int first = 6;  // group rows at 0, 3 and 5
    QVERIFY(m_view->isGroupRow(first - 1));
    QCOMPARE(m_view->model()->index(first, 2).data().toString(), QStringLiteral("5"));
    QCOMPARE(m_view->model()->index(first + 1, 2).data().toString(), QStringLiteral("3"));
    QCOMPARE(m_view->model()->index(first + 2, 2).data().toString(), QStringLiteral("0"));
    QCOMPARE(m_view->groupCount(), 3);
}

void tst_GroupProxyModel::expandedGroupsSurviveSort()
{
    m_view->setGroupExpanded(2, true);
    m_view->sortBy(2, Qt::AscendingOrder);
    QVERIFY(m_view->isGroupExpanded(2));
    QVERIFY(!m_view->isGroupExpanded(0));
    QCOMPARE(m_view->viewRowCount(), 6);
}

void tst_GroupProxyModel::expanderClickToggles()
{
    QSignalSpy changed(m_view, &TableView::groupExpandedChanged);
    const QRect groupRow = m_view->cellRect(1, 0);
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, QPoint(groupRow.left() + 6, groupRow.center().y()));
    QVERIFY(m_view->isGroupExpanded(1));
    QCOMPARE(m_view->viewRowCount(), 4);
    QCOMPARE(changed.count(), 1);
    // A single click beside the expander only selects.
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, m_view->cellRect(0, 0).center() + QPoint(40, 0));
    QVERIFY(!m_view->isGroupExpanded(0));
    QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, m_view->cellRect(0, 0).center() + QPoint(40, 0));
    QVERIFY(m_view->isGroupExpanded(0));
    QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, QPoint(groupRow.left() + 6, m_view->cellRect(3, 0).center().y()));
    QVERIFY(!m_view->isGroupExpanded(1));
}

void tst_GroupProxyModel::keysOpenAndShutGroups()
{
    m_view->setFocus();
    m_view->setCurrentIndex(m_view->model()->index(0, 0));
    QTest::keyClick(m_view, Qt::Key_Right);
    QVERIFY(m_view->isGroupExpanded(0));
    QTest::keyClick(m_view, Qt::Key_Left);
    QVERIFY(!m_view->isGroupExpanded(0));
    QTest::keyClick(m_view, Qt::Key_Space);
    QVERIFY(m_view->isGroupExpanded(0));
    QTest::keyClick(m_view, Qt::Key_Down);
    QCOMPARE(m_view->focusedRow(), 1);
}

void tst_GroupProxyModel::groupedColumnHiddenWhenAsked()
{
    QVERIFY(!m_view->isColumnHidden(0));
    m_view->options()->setColumnHidingOnGroupingEnabled(true);
    QVERIFY(m_view->isColumnHidden(0));
    QVERIFY(m_view->column(0)->isVisible());   // the column itself is still wanted
    m_view->groupBy(-1);
    QVERIFY(!m_view->isColumnHidden(0));
}

void tst_GroupProxyModel::disabledGroupingRefuses()
{
    m_view->options()->setGroupingEnabled(false);
    QCOMPARE(m_view->groupColumn(), -1);
    QTest::ignoreMessage(QtWarningMsg, "cannot group by column 1");
    m_view->groupBy(1);
    QCOMPARE(m_view->groupColumn(), -1);
    QCOMPARE(m_view->viewRowCount(), 6);
}

void tst_GroupProxyModel::endingGroupingRestoresRows()
{
    m_view->column(0)->setGroupIndex(-1);
    QCOMPARE(m_view->groupColumn(), -1);
    QCOMPARE(m_view->viewRowCount(), 6);
    for (int r = 0; r < 6; ++r)
        QCOMPARE(m_view->sourceRow(r), r);
}

void tst_GroupProxyModel::changedTextMovesRowToItsGroup()
{
    m_view->expandAll();
    m_model->item(3, 0)->setText(QStringLiteral("银行"));   // 京东方 leaves 电子
    QCOMPARE(m_view->groupCount(), 2);
    QCOMPARE(m_view->groupCaption(3), QStringLiteral("行业: 银行  (4)"));
    QVERIFY(m_view->isGroupExpanded(1));
    m_model->item(0, 0)->setText(QStringLiteral("保险"));   // a new group, shut
    QCOMPARE(m_view->groupCount(), 3);
    QCOMPARE(m_view->groupCaption(0), QStringLiteral("行业: 保险  (1)"));
    QVERIFY(!m_view->isGroupExpanded(0));
}

QTEST_MAIN(tst_GroupProxyModel)
#include "tst_groupproxymodel.moc"
