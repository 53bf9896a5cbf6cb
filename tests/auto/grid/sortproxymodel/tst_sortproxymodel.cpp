#include "bandgrid.h"
#include "sortproxymodel.h"

#include <QStandardItemModel>
#include <QtTest>

using namespace BandGrid;

// The role a data model keeps its sort values in.
static const int kSortRole = 274;

// A model that counts how often the sort role is read.
class CountingModel : public QStandardItemModel
{
public:
    using QStandardItemModel::QStandardItemModel;
    mutable int reads = 0;
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == kSortRole)
            ++reads;
        return QStandardItemModel::data(index, role);
    }
};

class tst_SortProxyModel : public QObject
{
    Q_OBJECT
private slots:
    void byRole_data();
    void byRole();
    void readsEachValueOncePerSort();
    void currentRowFollowsItsData();
    void newRowsAreSortedAgain();
    void changedValuesAreSortedAgain();
    void otherChangesKeepTheOrder();
    void headerClickTogglesOrder();
    void noSortWhenDisabled();

private:
    static QStandardItemModel *modelOf(const QVariantList &values);
    static QStringList column(const QAbstractItemModel *model, int role = Qt::DisplayRole);
};

QStandardItemModel *tst_SortProxyModel::modelOf(const QVariantList &values)
{
    auto *model = new QStandardItemModel(values.size(), 1);
    for (int r = 0; r < values.size(); ++r) {
        auto *item = new QStandardItem(values.at(r).toString());
        item->setData(values.at(r), kSortRole);
        model->setItem(r, 0, item);
    }
    return model;
}

QStringList tst_SortProxyModel::column(const QAbstractItemModel *model, int role)
{
    QStringList out;
    for (int r = 0; r < model->rowCount(); ++r)
        out << model->index(r, 0).data(role).toString();
    return out;
}

void tst_SortProxyModel::byRole_data()
{
    QTest::addColumn<QVariantList>("values");
    QTest::addColumn<QString>("locale");
    QTest::addColumn<bool>("localeAware");
    QTest::addColumn<int>("order");
    QTest::addColumn<QStringList>("expected");

    const QVariantList cities{QStringLiteral("上海"), QStringLiteral("北京"), QStringLiteral("天津"),
                              QStringLiteral("广州"), QStringLiteral("深圳")};
    QTest::newRow("chinese by pinyin")
        << cities << "zh_CN" << true << int(Qt::AscendingOrder)
        << QStringList{"北京", "广州", "上海", "深圳", "天津"};
    QTest::newRow("chinese by pinyin, descending")
        << cities << "zh_CN" << true << int(Qt::DescendingOrder)
        << QStringList{"天津", "深圳", "上海", "广州", "北京"};
    QTest::newRow("chinese by code point when not locale-aware")
        << cities << "zh_CN" << false << int(Qt::AscendingOrder)
        << QStringList{"上海", "北京", "天津", "广州", "深圳"};
    QTest::newRow("numbers as numbers, not as text")
        << QVariantList{10.0, 9, 100LL, -1.5, 2.25} << "en_US" << true << int(Qt::AscendingOrder)
        << QStringList{"-1.5", "2.25", "9", "10", "100"};
    QTest::newRow("numbers descending")
        << QVariantList{10.0, 9, 100LL, -1.5, 2.25} << "en_US" << true << int(Qt::DescendingOrder)
        << QStringList{"100", "10", "9", "2.25", "-1.5"};
    QTest::newRow("empty values last, ascending")
        << QVariantList{3, QVariant(), 1, QString()} << "en_US" << true << int(Qt::AscendingOrder)
        << QStringList{"1", "3", "", ""};
    QTest::newRow("empty values last, descending")
        << QVariantList{QVariant(), 3, 1} << "en_US" << true << int(Qt::DescendingOrder)
        << QStringList{"3", "1", ""};
    QTest::newRow("numbers before texts")
        << QVariantList{QStringLiteral("abc"), 5, QStringLiteral("Abd"), 1} << "en_US" << true
        << int(Qt::AscendingOrder) << QStringList{"1", "5", "abc", "Abd"};
    QTest::newRow("digits in codes read as numbers")
        << QVariantList{QStringLiteral("A10"), QStringLiteral("A9"), QStringLiteral("A1")} << "en_US"
        << true << int(Qt::AscendingOrder) << QStringList{"A1", "A9", "A10"};
    QTest::newRow("dates in time order")
        << QVariantList{QDateTime(QDate(2020, 5, 1), QTime(0, 0)), QDateTime(QDate(2019, 1, 2), QTime(0, 0))}
        << "en_US" << true << int(Qt::AscendingOrder)
        << QStringList{QDateTime(QDate(2019, 1, 2), QTime(0, 0)).toString(Qt::ISODate),
                       QDateTime(QDate(2020, 5, 1), QTime(0, 0)).toString(Qt::ISODate)};
}

void tst_SortProxyModel::byRole()
{
    QFETCH(QVariantList, values);
    QFETCH(QString, locale);
    QFETCH(bool, localeAware);
    QFETCH(int, order);
    QFETCH(QStringList, expected);

    QScopedPointer<QStandardItemModel> model(modelOf(values));
    SortProxyModel proxy;
    proxy.setSourceModel(model.data());
    proxy.setLocale(QLocale(locale));
    proxy.sortBy(0, kSortRole, Qt::SortOrder(order), localeAware);
    QStringList got;
    for (int r = 0; r < proxy.rowCount(); ++r) {
        const QVariant v = proxy.index(r, 0).data(kSortRole);
        got << (v.userType() == QMetaType::QDateTime ? v.toDateTime().toString(Qt::ISODate) : v.toString());
    }
    QCOMPARE(got, expected);
    // The mapping holds both ways.
    for (int r = 0; r < proxy.rowCount(); ++r)
        QCOMPARE(proxy.proxyRow(proxy.sourceRow(r)), r);

    // The same through a table view and a column's sort role.
    TableView view;
    view.setSortLocale(QLocale(locale));
    view.setModel(model.data());
    view.column(0)->setSortRole(kSortRole);
    view.column(0)->setSortLocaleAware(localeAware);
    view.sortBy(0, Qt::SortOrder(order));
    QStringList shown;
    for (int r = 0; r < view.viewRowCount(); ++r) {
        const QVariant v = view.column(0)->value(view.sourceRow(r), kSortRole);
        shown << (v.userType() == QMetaType::QDateTime ? v.toDateTime().toString(Qt::ISODate) : v.toString());
    }
    QCOMPARE(shown, expected);
}

void tst_SortProxyModel::readsEachValueOncePerSort()
{
    CountingModel model(1000, 1);
    for (int r = 0; r < 1000; ++r) {
        auto *item = new QStandardItem;
        item->setData((r * 7919) % 1000, kSortRole);
        model.setItem(r, 0, item);
    }
    SortProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.sortBy(0, kSortRole, Qt::AscendingOrder, true);
    QCOMPARE(model.reads, 1000);
    for (int r = 1; r < proxy.rowCount(); ++r)
        QVERIFY(proxy.index(r - 1, 0).data(kSortRole).toInt() <= proxy.index(r, 0).data(kSortRole).toInt());
}

void tst_SortProxyModel::currentRowFollowsItsData()
{
    QScopedPointer<QStandardItemModel> model(modelOf({5, 3, 9, 1}));
    TableView view;
    view.setModel(model.data());
    view.column(0)->setSortRole(kSortRole);
    view.setFocusedRow(2); // value 9
    QCOMPARE(view.currentIndex().row(), 2);
    QSignalSpy focus(&view, &TableView::focusRowChanged);
    view.sortBy(0, Qt::AscendingOrder);
    QCOMPARE(view.currentIndex().row(), 3);  // 9 is last now
    QCOMPARE(view.focusedRow(), 2);          // still the same row of the model
    QCOMPARE(focus.count(), 0);
    QVERIFY(view.selectionModel()->isRowSelected(3, QModelIndex()));
}

void tst_SortProxyModel::newRowsAreSortedAgain()
{
    QScopedPointer<QStandardItemModel> model(modelOf({5, 3}));
    TableView view;
    view.setModel(model.data());
    view.column(0)->setSortRole(kSortRole);
    view.sortBy(0, Qt::DescendingOrder);
    auto *item = new QStandardItem(QStringLiteral("7"));
    item->setData(7, kSortRole);
    model->appendRow(item);
    QCOMPARE(column(view.model()), (QStringList{"7", "5", "3"}));
}

void tst_SortProxyModel::changedValuesAreSortedAgain()
{
    QScopedPointer<QStandardItemModel> model(modelOf({5, 3, 9}));
    TableView view;
    view.setModel(model.data());
    view.column(0)->setSortRole(kSortRole);
    view.sortBy(0, Qt::AscendingOrder);
    view.setFocusedRow(0); // 5, in the middle
    model->item(0)->setData(10, kSortRole);
    model->item(0)->setText(QStringLiteral("10"));
    QCOMPARE(column(view.model()), (QStringList{"3", "9", "10"}));
    QCOMPARE(view.currentIndex().row(), 2);  // the current row went with it
    QCOMPARE(view.focusedRow(), 0);
}

void tst_SortProxyModel::otherChangesKeepTheOrder()
{
    CountingModel model(3, 2);
    for (int r = 0; r < 3; ++r) {
        auto *item = new QStandardItem;
        item->setData(3 - r, kSortRole);
        model.setItem(r, 0, item);
        model.setItem(r, 1, new QStandardItem(QStringLiteral("x")));
    }
    TableView view;
    view.setModel(&model);
    view.column(0)->setSortRole(kSortRole);
    view.sortBy(0, Qt::AscendingOrder);
    const int reads = model.reads;
    model.item(1, 1)->setText(QStringLiteral("y"));          // another column
    model.item(1, 0)->setData(QStringLiteral("t"), Qt::ToolTipRole); // another role
    QCOMPARE(model.reads, reads);
    QCOMPARE(view.sourceRow(0), 2);
    QCOMPARE(view.model()->index(1, 1).data().toString(), QStringLiteral("y"));
}

void tst_SortProxyModel::headerClickTogglesOrder()
{
    QScopedPointer<QStandardItemModel> model(modelOf({2, 1, 3}));
    TableView view;
    view.setModel(model.data());
    view.column(0)->setSortRole(kSortRole);
    view.resize(300, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QSignalSpy sorted(&view, &TableView::sortChanged);
    const QPoint caption = view.bandHeader()->sectionRect(0).center();
    QTest::mouseClick(view.bandHeader()->viewport(), Qt::LeftButton, {}, caption);
    QCOMPARE(column(view.model()), (QStringList{"1", "2", "3"}));
    QTest::mouseClick(view.bandHeader()->viewport(), Qt::LeftButton, {}, caption);
    QCOMPARE(column(view.model()), (QStringList{"3", "2", "1"}));
    QTest::mouseClick(view.bandHeader()->viewport(), Qt::LeftButton, {}, caption);
    QCOMPARE(column(view.model()), (QStringList{"1", "2", "3"}));
    QCOMPARE(sorted.count(), 3);
    QCOMPARE(sorted.at(1).at(1).value<Qt::SortOrder>(), Qt::DescendingOrder);
    QVERIFY(view.bandHeader()->isSortIndicatorShown());
    QCOMPARE(view.bandHeader()->sortIndicatorSection(), 0);
}

void tst_SortProxyModel::noSortWhenDisabled()
{
    QScopedPointer<QStandardItemModel> model(modelOf({2, 1, 3}));
    TableView view;
    view.setModel(model.data());
    view.options()->setSortingEnabled(false);
    view.resize(300, 200);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QTest::mouseClick(view.bandHeader()->viewport(), Qt::LeftButton, {},
                      view.bandHeader()->sectionRect(0).center());
    QCOMPARE(column(view.model()), (QStringList{"2", "1", "3"}));
}

QTEST_MAIN(tst_SortProxyModel)
#include "tst_sortproxymodel.moc"
