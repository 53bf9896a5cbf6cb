#include "bandgrid.h"
#include "sortproxymodel.h"

#include <QStandardItemModel>
#include <QtTest>

#include <functional>

using namespace BandGrid;
using Change = std::function<void(QStandardItemModel &)>;
Q_DECLARE_METATYPE(Change)

// The role a data model keeps its sort values in.
static const int kSortRole = 274;

// A model that counts how often the sort role is read.
class CountingModel : public QStandardItemModel
{
public:
    explicit CountingModel(const QVariantList &values)
        : QStandardItemModel(values.size(), 2)
    {
        for (int r = 0; r < values.size(); ++r) {
            auto *item = new QStandardItem(values.at(r).toString());
            item->setData(values.at(r), kSortRole);
            setItem(r, 0, item);
            setItem(r, 1, new QStandardItem(QStringLiteral("x")));
        }
    }
    mutable int reads = 0;
    QVariant data(const QModelIndex &index, int role) const override
    {
        reads += role == kSortRole ? 1 : 0;
        return QStandardItemModel::data(index, role);
    }
};

// The sort values of a column as text, top to bottom.
static QStringList valuesOf(const QAbstractItemModel *model, int role = Qt::DisplayRole)
{
    QStringList out;
    for (int r = 0; r < model->rowCount(); ++r) {
        const QVariant v = model->index(r, 0).data(role);
        out << (v.userType() == QMetaType::QDateTime ? v.toDateTime().toString(Qt::ISODate) : v.toString());
    }
    return out;
}

class tst_SortProxyModel : public QObject
{
    Q_OBJECT
private slots:
    void byRole_data();
    void byRole();
    void readsEachValueOncePerSort();
    void modelChanges_data();
    void modelChanges();
    void headerClicks_data();
    void headerClicks();
};

void tst_SortProxyModel::byRole_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QString>("locale");
    QTest::addColumn<bool>("localeAware");
    QTest::addColumn<int>("order");
    QTest::addColumn<QStringList>("expected");
    const QVariantList cities{"上海", "北京", "天津", "广州", "深圳"};
    const QVariantList numbers{10.0, 9, 100LL, -1.5, 2.25};
    const int up = Qt::AscendingOrder;
    const int down = Qt::DescendingOrder;
    QTest::newRow("chinese by pinyin") << cities << "zh_CN" << true << up << QStringList{"北京", "广州", "上海", "深圳", "天津"};
    QTest::newRow("chinese by pinyin, descending") << cities << "zh_CN" << true << down
                                                   << QStringList{"天津", "深圳", "上海", "广州", "北京"};
    QTest::newRow("chinese by code point when not locale-aware") << cities << "zh_CN" << false << up
                                                                 << QStringList{"上海", "北京", "天津", "广州", "深圳"};
    QTest::newRow("numbers as numbers, not as text") << numbers << "en_US" << true << up
                                                     << QStringList{"-1.5", "2.25", "9", "10", "100"};
    QTest::newRow("numbers descending") << numbers << "en_US" << true << down << QStringList{"100", "10", "9", "2.25", "-1.5"};
    QTest::newRow("empty values last, ascending") << QVariantList{3, QVariant(), 1, QString()} << "en_US" << true << up
                                                  << QStringList{"1", "3", "", ""};
    QTest::newRow("empty values last, descending") << QVariantList{QVariant(), 3, 1} << "en_US" << true << down
                                                   << QStringList{"3", "1", ""};
    QTest::newRow("numbers before texts") << QVariantList{"abc", 5, "Abd", 1} << "en_US" << true << up
                                          << QStringList{"1", "5", "abc", "Abd"};
    QTest::newRow("digits in codes read as numbers") << QVariantList{"A10", "A9", "A1"} << "en_US" << true << up
                                                     << QStringList{"A1", "A9", "A10"};
    QTest::newRow("dates in time order") << QVariantList{QDateTime(QDate(2020, 5, 1), QTime(0, 0)), QDateTime(QDate(2019, 1, 2), QTime(0, 0))}
                                         << "en_US" << true << up
                                         << QStringList{"2019-01-02T00:00:00", "2020-05-01T00:00:00"};
}

void tst_SortProxyModel::byRole()
{
    QFETCH(QVariantList, values);
    QFETCH(QString, locale);
    QFETCH(bool, localeAware);
    QFETCH(int, order);
    QFETCH(QStringList, expected);
    CountingModel model(values);
    SortProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.setLocale(QLocale(locale));
    proxy.sortBy(0, kSortRole, Qt::SortOrder(order), localeAware);
    QCOMPARE(valuesOf(&proxy, kSortRole), expected);
    for (int r = 0; r < proxy.rowCount(); ++r) // the mapping holds both ways
        QCOMPARE(proxy.proxyRow(proxy.sourceRow(r)), r);

    // The same through a table view and a column's sort role.
    TableView view;
    view.setSortLocale(QLocale(locale));
    view.setModel(&model);
    view.column(0)->setSortRole(kSortRole);
    view.column(0)->setSortLocaleAware(localeAware);
    view.sortBy(0, Qt::SortOrder(order));
    QCOMPARE(valuesOf(view.model(), kSortRole), expected);
}

void tst_SortProxyModel::readsEachValueOncePerSort()
{
    QVariantList values;
    for (int r = 0; r < 1000; ++r)
        values << (r * 7919) % 1000;
    CountingModel model(values);
    model.reads = 0;
    SortProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.sortBy(0, kSortRole, Qt::AscendingOrder, true);
    QCOMPARE(model.reads, 1000);
    for (int r = 1; r < proxy.rowCount(); ++r)
        QVERIFY(proxy.index(r - 1, 0).data(kSortRole).toInt() <= proxy.index(r, 0).data(kSortRole).toInt());
}

void tst_SortProxyModel::modelChanges_data()
{
    // A view sorted ascending by column 0 over the values, focused on one
    // row of the model; then the model changes.
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<int>("focused");
    QTest::addColumn<Change>("change");
    QTest::addColumn<QStringList>("shown");
    QTest::addColumn<int>("currentRow"); // in the view; -2: not looked at
    QTest::addColumn<bool>("sortedAgain");
    QTest::newRow("nothing changes: the current row follows its data")
        << QVariantList{5, 3, 9, 1} << 2 << Change([](QStandardItemModel &) {})
        << QStringList{"1", "3", "5", "9"} << 3 << false;
    QTest::newRow("a new row is sorted in")
        << QVariantList{5, 3} << 0 << Change([](QStandardItemModel &m) {
               auto *item = new QStandardItem(QStringLiteral("4"));
               item->setData(4, kSortRole);
               m.appendRow(item);
           }) << QStringList{"3", "4", "5"} << -2 << true;
    QTest::newRow("a changed value is sorted again, the current row with it")
        << QVariantList{5, 3, 9} << 0 << Change([](QStandardItemModel &m) {
               m.item(0)->setData(10, kSortRole);
               m.item(0)->setText(QStringLiteral("10"));
           }) << QStringList{"3", "9", "10"} << 2 << true;
    QTest::newRow("another column or role keeps the order unread")
        << QVariantList{3, 2, 1} << 0 << Change([](QStandardItemModel &m) {
               m.item(1, 1)->setText(QStringLiteral("y"));
               m.item(1, 0)->setData(QStringLiteral("t"), Qt::ToolTipRole);
           }) << QStringList{"1", "2", "3"} << 2 << false;
}

void tst_SortProxyModel::modelChanges()
{
    QFETCH(QVariantList, values);
    QFETCH(int, focused);
    QFETCH(Change, change);
    QFETCH(int, currentRow);
    QFETCH(bool, sortedAgain);
    CountingModel model(values);
    TableView view;
    view.setModel(&model);
    view.column(0)->setSortRole(kSortRole);
    view.setFocusedRow(focused);
    QCOMPARE(view.currentIndex().row(), focused);
    QSignalSpy focus(&view, &TableView::focusRowChanged);
    view.sortBy(0, Qt::AscendingOrder);
    const int reads = model.reads;
    change(model);
    QTEST(valuesOf(view.model()), "shown");
    QCOMPARE(model.reads > reads, sortedAgain);
    if (currentRow == -2)
        return;
    QCOMPARE(view.currentIndex().row(), currentRow);
    QVERIFY(view.selectionModel()->isRowSelected(view.currentIndex().row(), QModelIndex()));
    QCOMPARE(view.focusedRow(), focused); // still the same row of the model
    QCOMPARE(focus.count(), 0);
}

void tst_SortProxyModel::headerClicks_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<int>("clicks");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("one click: ascending") << true << 1 << QStringList{"1", "2", "3"};
    QTest::newRow("two: descending") << true << 2 << QStringList{"3", "2", "1"};
    QTest::newRow("three: ascending again") << true << 3 << QStringList{"1", "2", "3"};
    QTest::newRow("sorting disabled") << false << 1 << QStringList{"2", "1", "3"};
}

void tst_SortProxyModel::headerClicks()
{
    QFETCH(bool, enabled);
    QFETCH(int, clicks);
    CountingModel model({2, 1, 3});
    TableView view;
    view.setModel(&model);
    view.column(0)->setSortRole(kSortRole);
    view.options()->setSortingEnabled(enabled);
    view.resize(300, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QSignalSpy sorted(&view, &TableView::sortChanged);
    for (int i = 0; i < clicks; ++i)
        QTest::mouseClick(view.bandHeader()->viewport(), Qt::LeftButton, {}, view.bandHeader()->sectionRect(0).center());
    QTEST(valuesOf(view.model()), "shown");
    QCOMPARE(sorted.count(), enabled ? clicks : 0);
    if (!enabled)
        return;
    const Qt::SortOrder order = clicks % 2 ? Qt::AscendingOrder : Qt::DescendingOrder;
    QCOMPARE(sorted.last().at(1).value<Qt::SortOrder>(), order);
    QVERIFY(view.bandHeader()->isSortIndicatorShown());
    QCOMPARE(view.bandHeader()->sortIndicatorSection(), 0);
    QCOMPARE(view.bandHeader()->sortIndicatorOrder(), order);
}

QTEST_MAIN(tst_SortProxyModel)
#include "tst_sortproxymodel.moc"
