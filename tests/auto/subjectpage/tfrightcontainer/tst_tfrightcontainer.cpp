#include "tfbaseview.h"
#include "tfmainview.h"
#include "tfrightcontainer.h"
#include "tfsubjecttablewidget.h"

#include "echarts/tfmulticharts.h"
#include "mulittable/tfsubjecttablemodel.h"

#include "subjectservice.h"
#include "tfcore/tfserviceconfig.h"

#include <QApplication>
#include <QLabel>
#include <QMutex>
#include <QPushButton>
#include <QSignalSpy>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QWebEngineView>
#include <QtTest>

#include "webenginetestmain.h"

#include <memory>

namespace {

const char kServiceKey[] = "servercfg.ini:Subject";
using Notices = QList<QPair<qlonglong, qlonglong>>; // (child, parent) of each notice

qlonglong secuIdOfRow(const RowData &row)
{
    for (const auto &cell : row) {
        if (cell.fieldName == QLatin1String("SECU_ID"))
            return cell.value.toLongLong();
    }
    return -1;
}

QStringList tabTexts(const QTabWidget *tabs)
{
    QStringList texts;
    for (int index = 0; index < tabs->count(); ++index)
        texts << tabs->tabText(index);
    return texts;
}

} // namespace

class tst_TFRightContainer : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void construction();
    void tabText_data();
    void tabText();
    void childNotices_data();
    void childNotices();
    void viewWithChildren();
    void rowClickRefreshesChildren();
    void viewWithoutChildrenHidesTabs();
    void createSubWidgetsIgnoresUnknownAndNull();
    void hideTab();
    void chartTabsFollowTheMainTable();
    void splitterRule_data();
    void splitterRule();

private:
    std::unique_ptr<TFRightContainer> openPage(qint64 viewId);

    QTemporaryDir m_dir;
    std::unique_ptr<SubjectService::Server> m_server;
};

void tst_TFRightContainer::initTestCase()
{
    TFTableModelData::registerRowDataType();
    QVERIFY(m_dir.isValid());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
    SubjectService::Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("right.sqlite"));
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
    TFServiceConfig::instance()->setHttpUrl(QLatin1String(kServiceKey), m_server->baseUrl());
}

void tst_TFRightContainer::cleanupTestCase()
{
    if (m_server)
        m_server->stop();
}

std::unique_ptr<TFRightContainer> tst_TFRightContainer::openPage(qint64 viewId)
{
    std::unique_ptr<TFRightContainer> container(new TFRightContainer);
    container->resize(1200, 800);
    container->show();
    container->refreshPage(viewId, QStringLiteral("page %1").arg(viewId));
    return container;
}

void tst_TFRightContainer::construction()
{
    TFRightContainer container;
    QCOMPARE(container.objectName(), QStringLiteral("rightSubjectContainer"));
    QCOMPARE(container.mainView()->objectName(), QStringLiteral("mainView"));
    QCOMPARE(container.tabWidget()->objectName(), QStringLiteral("subViewContainer"));
    QCOMPARE(container.cornerButton()->objectName(), QStringLiteral("cornerButton"));
    QVERIFY(container.cornerButton()->isCheckable());
    QCOMPARE(container.tabWidget()->cornerWidget(), container.cornerButton());
    QVERIFY(container.isTitleVisible());
    QCOMPARE(container.currentView(), -1);
    QCOMPARE(container.mainView()->currentViewId(), -1);
    QVERIFY(!container.mainView()->currentView());
    QVERIFY(container.mainView()->firstRow().isEmpty());
}

void tst_TFRightContainer::tabText_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("text");

    QTest::newRow("empty") << QString() << QString();
    QTest::newRow("short") << "财务摘要" << "财务摘要";
    QTest::newRow("ten characters stay") << "一二三四五六七八九十" << "一二三四五六七八九十";
    QTest::newRow("eleven are cut") << "一二三四五六七八九十壹" << "一二三四五六七八九十...";
    QTest::newRow("latin") << "abcdefghijklmnop" << "abcdefghij...";
}

void tst_TFRightContainer::tabText()
{
    QFETCH(QString, caption);
    QFETCH(QString, text);
    QCOMPARE(TFRightContainer::tabText(caption), text);
}

void tst_TFRightContainer::childNotices_data()
{
    // Notices as (child, parent) pairs sent while the page shows view 7000
    // (a view that the catalogue does not hold, so that no reply makes a tab).
    QTest::addColumn<Notices>("notices");
    QTest::addColumn<QList<qint64>>("children");
    QTest::addColumn<bool>("tabsShown");

    QTest::newRow("one child") << Notices{{7001, 7000}} << QList<qint64>{7001} << true;
    QTest::newRow("stale notice of an earlier page") << Notices{{7001, 6000}} << QList<qint64>{} << false;
    QTest::newRow("repeated notice") << Notices{{7001, 7000}, {7001, 7000}, {7002, 7000}}
                                     << QList<qint64>{7001, 7002} << true;
    QTest::newRow("mixed") << Notices{{7003, 6999}, {7002, 7000}} << QList<qint64>{7002} << true;
}

void tst_TFRightContainer::childNotices()
{
    QFETCH(Notices, notices);
    QFETCH(QList<qint64>, children);
    QFETCH(bool, tabsShown);

    TFRightContainer container;
    container.show();
    container.refreshPage(7000, QStringLiteral("none"));
    QVERIFY(container.tabWidget()->isHidden());
    for (const auto &notice : notices)
        emit container.mainView()->signalGetSubViewCfg(notice.first, QStringLiteral("c"), notice.second);
    QCOMPARE(container.childState().keys(), children);
    for (bool ready : container.childState())
        QVERIFY(!ready);
    QCOMPARE(!container.tabWidget()->isHidden(), tabsShown);
    // A notice for a view the service does not know makes no tab, now or later.
    // Every request has run and its reply is among the posted events: what
    // has not happened by now does not happen.
    QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(container.tabWidget()->count(), 0);
    QCOMPARE(container.childState().keys(), children);
}

void tst_TFRightContainer::viewWithChildren()
{
    auto container = openPage(260);
    QTabWidget *tabs = container->tabWidget();
    QTRY_COMPARE_WITH_TIMEOUT(tabs->count(), 3, 30000);
    QCOMPARE(container->childState().keys(), (QList<qint64>{261, 262, 263}));
    for (bool ready : container->childState())
        QVERIFY(ready);
    QVERIFY(!tabs->isHidden());
    QCOMPARE(tabs->tabToolTip(0), tabs->tabText(0)); // short captions are not cut
    QStringList sorted = tabTexts(tabs);
    sorted.sort();
    QStringList expected{QStringLiteral("财务摘要"), QStringLiteral("日线走势"), QStringLiteral("十大股东")};
    expected.sort();
    QCOMPARE(sorted, expected);

    // The main table is the table of view 260 and has rows.
    auto *table = qobject_cast<TFSubjectTableWidget *>(container->mainView()->currentView());
    QVERIFY(table);
    QCOMPARE(container->mainView()->currentViewId(), 260);
    QTRY_VERIFY_WITH_TIMEOUT(table->model() && table->model()->rowCount() > 0, 30000);

    // A child table is silenced: it announces nothing further.
    for (int index = 0; index < tabs->count(); ++index) {
        auto *view = qobject_cast<TFBaseView *>(tabs->widget(index));
        QVERIFY(view);
        if (view->viewType() == TFBaseView::TableView)
            QVERIFY(view->signalsBlocked());
        else
            QCOMPARE(qobject_cast<TFMultiCharts *>(view)->caption(), QStringLiteral("日线走势"));
    }
}

void tst_TFRightContainer::rowClickRefreshesChildren()
{
    auto container = openPage(260);
    QTabWidget *tabs = container->tabWidget();
    QTRY_COMPARE_WITH_TIMEOUT(tabs->count(), 3, 30000);
    auto *table = qobject_cast<TFSubjectTableWidget *>(container->mainView()->currentView());
    QVERIFY(table);
    QTRY_VERIFY_WITH_TIMEOUT(table->model() && table->model()->rowCount() > 1, 30000);

    TFBaseView *finance = nullptr;
    for (int index = 0; index < tabs->count(); ++index) {
        auto *view = qobject_cast<TFBaseView *>(tabs->widget(index));
        if (view && view->viewId() == 261)
            finance = view;
    }
    QVERIFY(finance);

    auto secuIdOf = [](const RowData &row) {
        for (const auto &cell : row) {
            if (cell.fieldName == QLatin1String("SECU_ID"))
                return cell.value.toLongLong();
        }
        return qlonglong(-1);
    };
    auto boundSecuId = [](TFBaseView *view) {
        // The link "A.SECU_ID=数据源.SECU_ID" makes the row's value a parameter of the child.
        for (const auto &param : view->params()) {
            if (param.key == QLatin1String("SECU_ID"))
                return param.value.toLongLong();
        }
        for (const auto &filter : view->filters()) {
            if (filter.fieldName == QLatin1String("SECU_ID") && !filter.values.isEmpty())
                return filter.values.first().toLongLong();
        }
        return qlonglong(-1);
    };

    // The first row went to the children when the rows came.
    const RowData first = container->mainView()->firstRow();
    QTRY_COMPARE_WITH_TIMEOUT(boundSecuId(finance), secuIdOf(first), 30000);
    auto *financeTable = qobject_cast<TFSubjectTableWidget *>(finance);
    auto firstChildSecu = [financeTable]() {
        if (!financeTable->model() || financeTable->model()->rowCount() == 0)
            return qlonglong(-2);
        return secuIdOfRow(financeTable->model()->index(0, 0).data(TFSubjectTableModel::RowDataRole).value<RowData>());
    };
    // Replies are shown in the order they arrive, so the click waits for the
    // first row's reply: on a loaded machine it could otherwise land last.
    QTRY_COMPARE_WITH_TIMEOUT(firstChildSecu(), secuIdOf(first), 30000);
    // A click on the second row refreshes them with its values.
    const RowData second =
        table->model()->index(1, 0).data(TFSubjectTableModel::RowDataRole).value<RowData>();
    QVERIFY(secuIdOf(second) != secuIdOf(first));
    emit container->mainView()->sigRowData(second, true);
    QCOMPARE(boundSecuId(finance), secuIdOf(second));
    QTRY_COMPARE_WITH_TIMEOUT(firstChildSecu(), secuIdOf(second), 30000);
    // Every row of the child belongs to the security clicked.
    for (int row = 0; row < financeTable->model()->rowCount(); ++row) {
        const RowData cells =
            financeTable->model()->index(row, 0).data(TFSubjectTableModel::RowDataRole).value<RowData>();
        QCOMPARE(secuIdOf(cells), secuIdOf(second));
    }
}

static TFMultiCharts *chartTab(QTabWidget *tabs)
{
    for (int index = 0; index < tabs->count(); ++index) {
        if (auto *chart = qobject_cast<TFMultiCharts *>(tabs->widget(index)))
            return chart;
    }
    return nullptr;
}

// A chart tab with its own data asks for the selected row's; one without
// draws the main table's rows and takes no click.
void tst_TFRightContainer::chartTabsFollowTheMainTable()
{
    auto container = openPage(260);
    QTabWidget *tabs = container->tabWidget();
    QTRY_COMPARE_WITH_TIMEOUT(tabs->count(), 3, 30000);
    auto *table = qobject_cast<TFSubjectTableWidget *>(container->mainView()->currentView());
    QTRY_VERIFY_WITH_TIMEOUT(table->model() && table->model()->rowCount() > 1, 30000);
    TFMultiCharts *daily = chartTab(tabs);
    QVERIFY(daily);
    QVERIFY(daily->isgetchartdata());
    // Thirty trading days of the first row's security, oldest first.
    QTRY_COMPARE_WITH_TIMEOUT(daily->dataSource()->labels().size(), 30, 30000);
    QCOMPARE(daily->dataSource()->series().size(), 2);
    const QList<double> firstCloses = daily->dataSource()->series().at(0).values;
    // Shown, the tab's page holds the two series: the close and the volume.
    tabs->setCurrentWidget(daily);
    auto seriesOnPage = [daily]() {
        QVariant result;
        bool done = false;
        daily->webView()->page()->runJavaScript(
            QStringLiteral("typeof option === 'object' ? option.series.map(function (s) { return s.type; }).join(',') : ''"),
            [&](const QVariant &value) { result = value; done = true; });
        QTest::qWaitFor([&] { return done; }, 5000);
        return result.toString();
    };
    QTRY_COMPARE_WITH_TIMEOUT(seriesOnPage(), QStringLiteral("line,bar"), 30000);
    const RowData second =
        table->model()->index(1, 0).data(TFSubjectTableModel::RowDataRole).value<RowData>();
    emit container->mainView()->sigRowData(second, true);
    QTRY_VERIFY_WITH_TIMEOUT(daily->dataSource()->hasSeries()
                                 && daily->dataSource()->series().at(0).values != firstCloses, 30000);

    container->refreshPage(3110, QStringLiteral("bonds"));
    QTRY_COMPARE_WITH_TIMEOUT(tabs->count(), 1, 30000);
    QTRY_VERIFY_WITH_TIMEOUT((table = qobject_cast<TFSubjectTableWidget *>(container->mainView()->currentView()))
                                 && table->model() && table->model()->rowCount() > 1, 30000);
    TFMultiCharts *terms = chartTab(tabs);
    QVERIFY(terms);
    QVERIFY(!terms->isgetchartdata());
    QTRY_COMPARE_WITH_TIMEOUT(terms->dataSource()->labels().size(), table->model()->rowCount(), 30000);
    const QStringList labels = terms->dataSource()->labels();
    emit container->mainView()->sigRowData(
        table->model()->index(1, 0).data(TFSubjectTableModel::RowDataRole).value<RowData>(), true);
    QCOMPARE(terms->dataSource()->labels(), labels);
}

void tst_TFRightContainer::viewWithoutChildrenHidesTabs()
{
    auto container = openPage(610);
    auto *table = qobject_cast<TFSubjectTableWidget *>(container->mainView()->currentView());
    QTRY_VERIFY_WITH_TIMEOUT((table = qobject_cast<TFSubjectTableWidget *>(container->mainView()->currentView()))
                                 && table->model() && table->model()->rowCount() > 0,
                             30000);
    QVERIFY(container->tabWidget()->isHidden());
    QCOMPARE(container->tabWidget()->count(), 0);

    // From a page with children to one without: the tabs go.
    container->refreshPage(260, QStringLiteral("stocks"));
    QTRY_COMPARE_WITH_TIMEOUT(container->tabWidget()->count(), 3, 30000);
    container->refreshPage(610, QStringLiteral("macro"));
    QCOMPARE(container->tabWidget()->count(), 0);
    QVERIFY(container->childState().isEmpty());
    QVERIFY(container->tabWidget()->isHidden());
    // The table widget of the stack is reused.
    QCOMPARE(container->mainView()->kinds(), QList<int>{0});
}

void tst_TFRightContainer::createSubWidgetsIgnoresUnknownAndNull()
{
    TFRightContainer container;
    container.refreshPage(7000, QStringLiteral("none"));
    emit container.mainView()->signalGetSubViewCfg(7001, QStringLiteral("c"), 7000);
    container.createSubWidgets(7001, QJsonValue());
    container.createSubWidgets(7002, QJsonObject());
    QCOMPARE(container.tabWidget()->count(), 0);
    QCOMPARE(container.childState().value(7001), false);
}

void tst_TFRightContainer::hideTab()
{
    TFRightContainer container;
    container.resize(800, 600);
    container.show();
    QTabWidget *tabs = container.tabWidget();
    tabs->addTab(new QLabel, QStringLiteral("x"));
    tabs->show();
    const int bar = tabs->tabBar()->height();
    QVERIFY(bar > 0);
    container.cornerButton()->click(); // fold
    QCOMPARE(tabs->minimumHeight(), 0);
    QCOMPARE(tabs->maximumHeight(), bar);
    container.cornerButton()->click(); // open
    QCOMPARE(tabs->minimumHeight(), 5 * bar);
    QCOMPARE(tabs->maximumHeight(), 16777215);
}

void tst_TFRightContainer::splitterRule_data()
{
    QTest::addColumn<bool>("mainVisible");
    QTest::addColumn<bool>("childrenVisible");
    QTest::addColumn<bool>("mainLarger");
    QTest::addColumn<bool>("childrenLarger");

    QTest::newRow("both") << true << true << false << false;
    QTest::newRow("main only") << true << false << true << false;
    QTest::newRow("children only") << false << true << false << true;
}

void tst_TFRightContainer::splitterRule()
{
    QFETCH(bool, mainVisible);
    QFETCH(bool, childrenVisible);
    QFETCH(bool, mainLarger);
    QFETCH(bool, childrenLarger);

    TFRightContainer container;
    container.resize(800, 600);
    container.show();
    container.tabWidget()->show();
    container.setMainViewVisible(mainVisible);
    container.setChildViewsVisible(childrenVisible);
    if (childrenVisible)
        container.tabWidget()->show();
    QSplitter *splitter = container.findChild<QSplitter *>(QStringLiteral("Splitter"));
    QVERIFY(splitter);
    const QList<int> sizes = splitter->sizes();
    QCOMPARE(sizes.size(), 2);
    // Equal shares of an odd height differ by the one pixel left over.
    QCOMPARE(sizes.at(0) > sizes.at(1) + 1, mainLarger);
    QCOMPARE(sizes.at(1) > sizes.at(0) + 1, childrenLarger);
    QCOMPARE(container.childViewsVisible(), childrenVisible);
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_TFRightContainer)
#include "tst_tfrightcontainer.moc"
