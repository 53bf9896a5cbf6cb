#include "bandgrid.h"

#include <QScrollBar>
#include <QStandardItemModel>
#include <QtTest>

#include <functional>

using namespace BandGrid;

using Steps = QVector<QPair<int, int>>;
using Change = std::function<void(TableView *, QStandardItemModel *)>;
Q_DECLARE_METATYPE(Change)

// Rows of (industry, name, value); the view groups by industry.
class tst_GroupProxyModel : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void rowCounts_data();
    void rowCounts();
    void captionRunsAcrossTheRow_data();
    void captionRunsAcrossTheRow();
    void changes_data();
    void changes();
    void input_data();
    void input();
    void groupedColumnHiddenWhenAsked();

private:
    QStringList picture() const;
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
    QCOMPARE(picture().filter(QStringLiteral("行业: ")).size(), 3);
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

// The rows in sight: a group row by its caption, another by its name.
QStringList tst_GroupProxyModel::picture() const
{
    QStringList rows;
    for (int r = 0; r < m_view->viewRowCount(); ++r)
        rows << (m_view->isGroupRow(r) ? m_view->groupCaption(r) : m_view->model()->index(r, 1).data().toString());
    return rows;
}

void tst_GroupProxyModel::changes_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QStringList>("rows");
    const QStringList inModelOrder{"平安银行", "万科", "招商银行", "京东方", "保利", "兴业银行"};
    QTest::newRow("groups in pinyin order, rows in the model's")
        << Change([](TableView *v, QStandardItemModel *) { v->expandAll(); })
        << QStringList{"行业: 地产  (2)", "万科", "保利", "行业: 电子  (1)", "京东方",
                       "行业: 银行  (3)", "平安银行", "招商银行", "兴业银行"};
    QTest::newRow("rows inside a group follow the sort") << Change([](TableView *v, QStandardItemModel *) {
        v->expandAll();
        v->sortBy(2, Qt::DescendingOrder);
    }) << QStringList{"行业: 地产  (2)", "保利", "万科", "行业: 电子  (1)", "京东方",
                      "行业: 银行  (3)", "招商银行", "平安银行", "兴业银行"};
    QTest::newRow("an open group stays open through a sort") << Change([](TableView *v, QStandardItemModel *) {
        v->setGroupExpanded(2, true);
        v->sortBy(2, Qt::AscendingOrder);
    }) << QStringList{"行业: 地产  (2)", "行业: 电子  (1)", "行业: 银行  (3)", "兴业银行", "平安银行", "招商银行"};
    QTest::newRow("a changed text moves its row; a new group starts shut")
        << Change([](TableView *v, QStandardItemModel *m) {
               v->expandAll();
               m->item(3, 0)->setText(QStringLiteral("银行")); // 京东方 leaves 电子
               m->item(0, 0)->setText(QStringLiteral("保险"));
           })
        << QStringList{"行业: 保险  (1)", "行业: 地产  (2)", "万科", "保利", "行业: 银行  (3)", "招商银行", "京东方", "兴业银行"};
    QTest::newRow("ending grouping restores the rows") << Change([](TableView *v, QStandardItemModel *) {
        v->column(0)->setGroupIndex(-1);
    }) << inModelOrder;
    QTest::newRow("disabled grouping refuses") << Change([](TableView *v, QStandardItemModel *) {
        v->options()->setGroupingEnabled(false);
        QTest::ignoreMessage(QtWarningMsg, "cannot group by column 1");
        v->groupBy(1);
    }) << inModelOrder;
}

void tst_GroupProxyModel::changes()
{
    QFETCH(Change, change);
    change(m_view, m_model);
    QTEST(picture(), "rows");
    // Rows map to the model both ways; group rows to none, with their size.
    for (int r = 0; r < m_view->viewRowCount(); ++r) {
        const int source = m_view->sourceRow(r);
        if (m_view->isGroupRow(r)) {
            QCOMPARE(source, -1);
            QVERIFY(m_view->groupCaption(r).endsWith(QStringLiteral("(%1)").arg(m_view->model()->index(r, 0).data(GroupCountRole).toInt())));
            continue;
        }
        QCOMPARE(m_view->viewRow(source), r);
        QCOMPARE(m_model->item(source, 1)->text(), m_view->model()->index(r, 1).data().toString());
    }
}

void tst_GroupProxyModel::input_data()
{
    // Steps on view rows: a click on the expander, a click or a double
    // click beside it, or a key on the current row (view row 0 at first).
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QVector<int>>("expanded");
    QTest::addColumn<int>("toggles");
    QTest::addColumn<int>("focused"); // -1: not looked at
    QTest::newRow("expander opens") << QStringList{"expander 1"} << QVector<int>{1} << 1 << -1;
    QTest::newRow("expander again shuts") << QStringList{"expander 1", "expander 1"} << QVector<int>{} << 2 << -1;
    QTest::newRow("a click beside the expander only selects") << QStringList{"beside 0"} << QVector<int>{} << 0 << -1;
    QTest::newRow("a double click beside it opens") << QStringList{"beside 0", "double 0"} << QVector<int>{0} << 1 << -1;
    QTest::newRow("right opens") << QStringList{"key Right"} << QVector<int>{0} << 1 << -1;
    QTest::newRow("left shuts") << QStringList{"key Right", "key Left"} << QVector<int>{} << 2 << -1;
    QTest::newRow("space shuts an open group") << QStringList{"key Right", "key Space"} << QVector<int>{} << 2 << -1;
    QTest::newRow("space opens, down goes into the group")
        << QStringList{"key Space", "key Down"} << QVector<int>{0} << 1 << 1;
}

void tst_GroupProxyModel::input()
{
    QFETCH(QStringList, steps);
    QFETCH(QVector<int>, expanded);
    QFETCH(int, focused);
    QSignalSpy toggles(m_view, &TableView::groupExpandedChanged);
    m_view->setFocus();
    m_view->setCurrentIndex(m_view->model()->index(0, 0));
    const QMap<QString, Qt::Key> keys{{"Right", Qt::Key_Right}, {"Left", Qt::Key_Left},
                                      {"Space", Qt::Key_Space}, {"Down", Qt::Key_Down}};
    for (const QString &step : steps) {
        const QString what = step.section(' ', 0, 0);
        const QString arg = step.section(' ', 1);
        const QRect row = m_view->cellRect(arg.toInt(), 0);
        if (what == "key")
            QTest::keyClick(m_view, keys.value(arg));
        else if (what == "expander")
            QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, QPoint(row.left() + 6, row.center().y()));
        else if (what == "beside")
            QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, row.center() + QPoint(40, 0));
        else
            QTest::mouseDClick(m_view->viewport(), Qt::LeftButton, {}, row.center() + QPoint(40, 0));
    }
    for (int g = 0; g < m_view->groupCount(); ++g)
        QCOMPARE(m_view->isGroupExpanded(g), expanded.contains(g));
    QTEST(int(toggles.count()), "toggles");
    if (focused >= 0)
        QCOMPARE(m_view->focusedRow(), focused);
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

QTEST_MAIN(tst_GroupProxyModel)
#include "tst_groupproxymodel.moc"
