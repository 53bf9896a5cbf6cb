#include "httptestserver.h"

#include "tfmainview.h"
#include "tfmenucfg.h"
#include "tfrightcontainer.h"
#include "tfsubjectmainframe.h"
#include "tfsubjectpage.h"
#include "tfsubjecttablewidget.h"
#include "tfsubjecttreewidget.h"
#include "tftreemodel.h"
#include "tftreewidgetcontainer.h"
#include "echarts/tfmulticharts.h"
#include "filterwidget/tfcacheconfig.h"
#include "filterwidget/tffilterwidget.h"
#include "httpservice/tfwxrshttp.h"
#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "mulittable/tfsujecttableview.h"
#include "net/tfjsp.h"
#include "pagination/tfpaginationbar.h"

#include "bandgrid.h"
#include "subjectservice.h"
#include "tfcore/tfcore.h"
#include "tfcore/tfserviceconfig.h"
#include "tfcore/tfwebview.h"

#include <QLabel>
#include <QLayout>
#include <QStackedWidget>
#include <QTabWidget>
#include <QThreadPool>
#include <QTreeView>
#include <QtTest>

#include <memory>

#include "webenginetestmain.h"

namespace {

const QString kServiceKey = QStringLiteral("servercfg.ini:Subject");
constexpr int kTimeout = 30000;
const QRegularExpression kElapsed(QStringLiteral("^耗时 \\d+\\.\\d{4} 秒$"));

RowData rowOf(TFSubjectTableWidget *table, int row)
{
    return table->model()->index(row, 0).data(TFSubjectTableModel::RowDataRole).value<RowData>();
}

qlonglong secuIdOf(const RowData &row)
{
    for (const auto &cell : row) {
        if (cell.fieldName == QLatin1String("SECU_ID"))
            return cell.value.toLongLong();
    }
    return -1;
}

// The securities a table shows: one, once a child follows the clicked row.
QSet<qlonglong> secuIdsOf(TFSubjectTableWidget *table)
{
    QSet<qlonglong> ids;
    for (int row = 0; table->model() && row < table->model()->rowCount(); ++row)
        ids.insert(secuIdOf(rowOf(table, row)));
    return ids;
}

QJsonArray rowsOf(const QJsonObject &reply)
{
    return reply.value("data").toObject().value("Data").toArray();
}

bool settled(const TFSubjectTableWidget *table)
{
    const QString text = table->timeLabel()->text();
    return kElapsed.match(text).hasMatch() || text == QStringLiteral("无数据!");
}

// Every request has run and its reply is among the posted events: what has
// not happened by now does not happen.
bool drained()
{
    const bool done = QThreadPool::globalInstance()->waitForDone(kTimeout);
    QCoreApplication::sendPostedEvents();
    return done;
}

template <class View>
View *tabOf(QTabWidget *tabs, qint64 viewId = -1)
{
    for (int index = 0; index < tabs->count(); ++index) {
        auto *view = qobject_cast<View *>(tabs->widget(index));
        if (view && (viewId < 0 || view->viewId() == viewId))
            return view;
    }
    return nullptr;
}

QModelIndex nodeNamed(QTreeView *view, const QString &caption)
{
    return view->model()->match(view->model()->index(0, 0), Qt::DisplayRole, caption, 1,
                                Qt::MatchExactly | Qt::MatchRecursive).value(0);
}

// Counts the grids a table builds: each reply shown puts a new grid under the filter bar.
class GridCounter : public QObject
{
public:
    explicit GridCounter(TFSubjectTableWidget *table) { table->layout()->itemAt(1)->widget()->installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::ChildAdded
                 && qobject_cast<TFSujectTableView *>(static_cast<QChildEvent *>(event)->child());
        return false;
    }
};

// The host's main window as far as links go: it records what it is asked to open.
class LinkWindow : public QWidget
{
    Q_OBJECT
public:
    Q_INVOKABLE void openStringUrl(const QString &url) { urls.append(url); }
    QStringList urls;
};

// A scripted data service for the replies the reference service never gives.
enum class NavReply { Good, BadEnvelope, ServerError, EmptyRows, BadConstants };
enum class TableCase { NoMatch, UnknownView, ServiceDown, PageMovedOn };

int objIdOf(const RecordedRequest &request)
{
    return QJsonDocument::fromJson(request.body).object().value(QStringLiteral("objId")).toInt(-1);
}

int countOf(const HttpTestServer &server, int objId)
{
    int count = 0;
    for (const RecordedRequest &request : server.requests())
        count += objIdOf(request) == objId;
    return count;
}

QJsonObject node(qlonglong code, qlonglong parent, const QString &caption, int level, qlonglong viewId,
                 const QString &url = QString())
{
    return QJsonObject{{"NODE_CODE", code}, {"P_NODE_CODE", parent}, {"NODE_CAP", caption}, {"LEVEL", level},
                       {"NODE_TYP", 1}, {"OBJ_VW_ID", viewId}, {"NODE_URL", url}};
}

} // namespace

Q_DECLARE_METATYPE(NavReply)
Q_DECLARE_METATYPE(TableCase)

class tst_Page : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();
    // One page of the stock topic, walked step by step.
    void stockPageOpens();
    void mainTableShowsTheServiceRows();
    void paging_data();
    void paging();
    void rowClickRefreshesChildren_data();
    void rowClickRefreshesChildren();
    void chartTabGetsTheRowData();
    void reloads_data();
    void reloads();
    void linksGoToTheMainWindow();
    void otherViewsAndAWebPage();
    // A page per topic, and tables of their own.
    void everyTopicOpensFromItsTree_data();
    void everyTopicOpensFromItsTree();
    void tableReplies_data();
    void tableReplies();
    // Pages against a scripted service.
    void navigationReplies_data();
    void navigationReplies();
    void blockTreeAndItsFilter();

private:
    std::unique_ptr<TFSubjectPage> openPage(const QString &url, const QUrl &service);
    std::unique_ptr<HttpTestServer> startScript(NavReply navReply);
    static QJsonObject post(const TFUc::TFRequestContent &content);
    TFSubjectMainFrame *frame() const { return m_page->mainFrame(); }
    TFRightContainer *right() const { return frame()->rightContainer(); }
    TFSubjectTableWidget *mainTable() const { return qobject_cast<TFSubjectTableWidget *>(right()->mainView()->currentView()); }

    QTemporaryDir m_dir;
    std::unique_ptr<SubjectService::Server> m_server;
    std::unique_ptr<TFSubjectPage> m_page;
};

void tst_Page::initTestCase()
{
    Q_INIT_RESOURCE(subjectpage);
    TFTableModelData::registerRowDataType();
    QVERIFY(m_dir.isValid());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
    SubjectService::Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("page.sqlite"));
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
    TFUc::setBaseUrl(m_server->baseUrl());
    m_page = openPage(QStringLiteral("view://subjectpage?pnodecode=2&objvwid=260&title=股票专题"), m_server->baseUrl());
}

void tst_Page::cleanup()
{
    TFUc::setBaseUrl(m_server->baseUrl());
    TFCore::instance()->setMainWindow(nullptr);
}

void tst_Page::cleanupTestCase()
{
    m_page.reset();
    QVERIFY(drained());
    if (m_server)
        m_server->stop();
}

std::unique_ptr<TFSubjectPage> tst_Page::openPage(const QString &url, const QUrl &service)
{
    TFServiceConfig::instance()->setHttpUrl(kServiceKey, service);
    auto page = std::make_unique<TFSubjectPage>();
    page->resize(1400, 900);
    page->show();
    page->init(QUrl(url), QVariant());
    return page;
}

QJsonObject tst_Page::post(const TFUc::TFRequestContent &content)
{
    const auto reply = TFWXRSHttp::post(content.url, content.body, TFWXRSHttp::buildHeaders(QString(), QString(), QString()));
    return QJsonDocument::fromJson(reply.data).object();
}

void tst_Page::stockPageOpens()
{
    // The tree of the topic stands with the node of the URL current; the
    // block tree comes with it, hidden until a view asks for it.
    QTRY_VERIFY_WITH_TIMEOUT(frame()->loadingLabel()->isHidden(), kTimeout);
    TFTreeWidgetContainer *tree = frame()->leftContainer();
    QCOMPARE(tree->mainTreeView()->currentIndex().data().toString(), QStringLiteral("沪深A股行情"));
    QCOMPARE(tree->title(), QStringLiteral("股票专题"));
    QTRY_VERIFY_WITH_TIMEOUT(tree->blockTree()->hasRows(), kTimeout);
    QVERIFY(tree->blockTree()->isHidden());
    // The group of the node names the window.
    QCOMPARE(frame()->windowTitle(), QStringLiteral("股票专题:行情中心"));
    emit tree->groupChanged(QString());
    QCOMPARE(frame()->windowTitle(), QStringLiteral("股票专题"));

    // View 260 is open and its three children became tabs.
    QCOMPARE(frame()->stack()->currentIndex(), 0);
    QCOMPARE(right()->currentView(), 260);
    QTabWidget *tabs = right()->tabWidget();
    QTRY_COMPARE_WITH_TIMEOUT(tabs->count(), 3, kTimeout);
    QTRY_VERIFY_WITH_TIMEOUT(mainTable(), kTimeout);
    QVERIFY(mainTable()->isFilterBarVisible());
    QCOMPARE(right()->childState().keys(), (QList<qint64>{261, 262, 263}));
    QVERIFY(!right()->childState().values().contains(false));
    QVERIFY(!tabs->isHidden());
    QStringList captions;
    for (int index = 0; index < tabs->count(); ++index) {
        captions << tabs->tabText(index);
        QCOMPARE(tabs->tabToolTip(index), tabs->tabText(index)); // short captions are not cut
        // A child table is silenced (it announces nothing further) and shows no filter bar.
        auto *child = qobject_cast<TFSubjectTableWidget *>(tabs->widget(index));
        if (!child)
            continue;
        QVERIFY(child->signalsBlocked() && !child->filterWidget()->isVisible());
        // A configuration reply only shows the label of a child: header and grid stay.
        QTRY_VERIFY_WITH_TIMEOUT(child->grid(), kTimeout);
        const QStringList header = child->header()->leafCaptions();
        QVERIFY(!header.isEmpty() && child->handleResponse(QJsonValue(), QString(), 0));
        QCOMPARE(child->header()->leafCaptions(), header);
    }
    QCOMPARE(QSet<QString>(captions.cbegin(), captions.cend()), (QSet<QString>{"财务摘要", "日线走势", "十大股东"}));
}

void tst_Page::mainTableShowsTheServiceRows()
{
    TFSubjectTableWidget *table = mainTable();
    QCOMPARE(table->caption(), QStringLiteral("沪深A股行情"));
    QTRY_VERIFY_WITH_TIMEOUT(settled(table), kTimeout);
    QVERIFY2(kElapsed.match(table->timeLabel()->text()).hasMatch(), qPrintable(table->timeLabel()->text()));
    // What the service answers to that very request is what the model holds.
    const QJsonArray rows = rowsOf(post(table->sentContent()));
    QVERIFY(rows.size() > 2);
    TFSubjectTableModel *model = table->model();
    QCOMPARE(model->rowCount(), rows.size());
    QCOMPARE(model->columnCount(), table->header()->leaves().size());
    const int code = table->header()->leafCaptions().indexOf(QStringLiteral("证券代码"));
    const int name = table->header()->leafCaptions().indexOf(QStringLiteral("证券简称"));
    QVERIFY(code >= 0 && name >= 0);
    for (int r : {0, 1, rows.size() - 1}) {
        QCOMPARE(model->index(r, code).data().toString(), rows.at(r).toObject().value("SECU_CODE").toString());
        QCOMPARE(model->index(r, name).data().toString(), rows.at(r).toObject().value("SECU_SHT").toString());
    }
    // The grid shows the model, banded, with the view's two frozen columns.
    TFSujectTableView *grid = table->grid();
    QCOMPARE(grid->model(), model);
    QVERIFY(grid->grid()->bandedView());
    QCOMPARE(grid->view()->frozenColumnCount(), 2);
    QCOMPARE(grid->view()->column(name)->editorKind(), BandGrid::EditorKind::Link);
    // The page bar carries the summary.
    QVERIFY(table->total() > table->paginationBar()->perCount());
    QCOMPARE(table->paginationBar()->totalCount(), qint64(table->total()));
    QCOMPARE(table->paginationBar()->currentPage(), qint64(1));
}

void tst_Page::paging_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("page");
    QTest::newRow("next") << QByteArray("on_nextButton_clicked") << 2;
    QTest::newRow("previous") << QByteArray("on_prevButton_clicked") << 1;
}

void tst_Page::paging()
{
    QFETCH(QByteArray, button);
    QFETCH(int, page);
    TFSubjectTableWidget *table = mainTable();
    TFPaginationBar *bar = table->paginationBar();
    TFSubjectTableModel *before = table->model();
    const QString firstCode = before->index(0, 0).data().toString();
    QSignalSpy spy(bar, &TFPaginationBar::signalCurrentPageChanged);
    QMetaObject::invokeMethod(bar, button.constData());
    QCOMPARE(spy.count(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(table->model() != before && settled(table), kTimeout);
    // The rows are the service's for the page the bar shows.
    QCOMPARE(bar->currentPage(), qint64(page));
    const QJsonArray rows = rowsOf(post(TFUc::viewDataRequest(260, {}, {}, {false, page, int(bar->perCount())})));
    QCOMPARE(table->model()->rowCount(), rows.size());
    QCOMPARE(table->model()->index(0, 0).data().toString(), rows.at(0).toObject().value("SECU_CODE").toString());
    QVERIFY(table->model()->index(0, 0).data().toString() != firstCode);
}

void tst_Page::rowClickRefreshesChildren_data()
{
    QTest::addColumn<int>("row");
    QTest::newRow("third row") << 2;
    QTest::newRow("second row") << 1;
    QTest::newRow("back to the first") << 0;
}

void tst_Page::rowClickRefreshesChildren()
{
    QFETCH(int, row);
    // The link "A.SECU_ID=数据源.SECU_ID" makes the row's value a parameter of the children.
    auto *finance = tabOf<TFSubjectTableWidget>(right()->tabWidget(), 261);
    auto *holders = tabOf<TFSubjectTableWidget>(right()->tabWidget(), 263);
    QVERIFY(finance && holders);
    // Replies are shown in the order they arrive, so a click waits for the
    // children to show the row before: on a loaded machine it could land last.
    QTRY_VERIFY_WITH_TIMEOUT(secuIdsOf(finance).size() == 1 && secuIdsOf(holders) == secuIdsOf(finance), kTimeout);
    const RowData clicked = rowOf(mainTable(), row);
    QVERIFY(!secuIdsOf(finance).contains(secuIdOf(clicked)));
    emit mainTable()->sigRowData(clicked, true);
    const QSet<qlonglong> after{secuIdOf(clicked)};
    QTRY_VERIFY_WITH_TIMEOUT(secuIdsOf(finance) == after && secuIdsOf(holders) == after, kTimeout);
}

// A chart tab with its own data asks for the selected row's.
void tst_Page::chartTabGetsTheRowData()
{
    auto *daily = tabOf<TFMultiCharts>(right()->tabWidget());
    QVERIFY(daily);
    QCOMPARE(daily->caption(), QStringLiteral("日线走势"));
    QVERIFY(daily->isgetchartdata());
    // Thirty trading days of the selected security: the close and the volume.
    QTRY_COMPARE_WITH_TIMEOUT(daily->dataSource()->labels().size(), 30, kTimeout);
    QCOMPARE(daily->dataSource()->series().size(), 2);
    const QList<double> closes = daily->dataSource()->series().at(0).values;
    right()->tabWidget()->setCurrentWidget(daily);
    auto seriesOnPage = [daily]() {
        // The answer may come after the wait gives up: it must not land on this frame.
        auto result = std::make_shared<QVariant>();
        daily->webView()->page()->runJavaScript(
            QStringLiteral("typeof option === 'object' ? option.series.map(function (s) { return s.type; }).join(',') : ''"),
            [result](const QVariant &value) { *result = value.isValid() ? value : QVariant(QString()); });
        QTest::qWaitFor([result] { return result->isValid(); }, 5000);
        return result->toString();
    };
    QTRY_COMPARE_WITH_TIMEOUT(seriesOnPage(), QStringLiteral("line,bar"), kTimeout);
    emit mainTable()->sigRowData(rowOf(mainTable(), 1), true);
    QTRY_VERIFY_WITH_TIMEOUT(daily->dataSource()->hasSeries() && daily->dataSource()->series().at(0).values != closes,
                             kTimeout);
}

void tst_Page::reloads_data()
{
    QTest::addColumn<bool>("waitForTheFirst");
    QTest::addColumn<int>("grids");
    // The first reply builds a grid; the second finds its rows on screen and only tells the time.
    QTest::newRow("identical request in flight") << false << 1;
    QTest::newRow("the same query after its reply builds anew") << true << 2;
}

void tst_Page::reloads()
{
    QFETCH(bool, waitForTheFirst);
    QFETCH(int, grids);
    TFSubjectTableWidget *table = mainTable();
    QTRY_VERIFY_WITH_TIMEOUT(settled(table), kTimeout);
    GridCounter counter(table);
    table->loadData(qMakePair(QString(), QVariant()));
    if (waitForTheFirst)
        QTRY_VERIFY_WITH_TIMEOUT(counter.count == 1 && settled(table), kTimeout);
    table->loadData(qMakePair(QString(), QVariant()));
    QTRY_VERIFY_WITH_TIMEOUT(counter.count >= 1 && settled(table), kTimeout);
    QVERIFY(drained());
    QCOMPARE(counter.count, grids);
    QVERIFY2(kElapsed.match(table->timeLabel()->text()).hasMatch(), qPrintable(table->timeLabel()->text()));
    QVERIFY(table->model()->rowCount() > 0);
}

void tst_Page::linksGoToTheMainWindow()
{
    LinkWindow window;
    TFCore::instance()->setMainWindow(&window);
    emit mainTable()->grid()->linkActivated(QString());
    emit mainTable()->grid()->linkActivated(QStringLiteral("view://subjectpage?objvwid=1641&secu_id=1"));
    QCOMPARE(window.urls, QStringList{QStringLiteral("view://subjectpage?objvwid=1641&secu_id=1")});
}

void tst_Page::otherViewsAndAWebPage()
{
    // From a view with children to one without: the tabs go, the table is reused.
    QTabWidget *tabs = right()->tabWidget();
    right()->refreshPage(610, QStringLiteral("macro"));
    QCOMPARE(tabs->count(), 0);
    QVERIFY(right()->childState().isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(mainTable()->viewId() == 610 && settled(mainTable()) && mainTable()->model()->rowCount() > 0,
                             kTimeout);
    QVERIFY(drained());
    QVERIFY(tabs->isHidden());
    QCOMPARE(right()->mainView()->kinds(), QList<int>{0});

    // A chart tab without data of its own draws the main table's rows and takes no click.
    right()->refreshPage(3110, QStringLiteral("bonds"));
    QTRY_COMPARE_WITH_TIMEOUT(tabs->count(), 1, kTimeout);
    QTRY_VERIFY_WITH_TIMEOUT(mainTable()->viewId() == 3110 && settled(mainTable()) && mainTable()->model()
                                 && mainTable()->model()->rowCount() > 1, kTimeout);
    auto *terms = tabOf<TFMultiCharts>(tabs);
    QVERIFY(terms && !terms->isgetchartdata());
    QTRY_COMPARE_WITH_TIMEOUT(terms->dataSource()->labels().size(), mainTable()->model()->rowCount(), kTimeout);
    const QStringList labels = terms->dataSource()->labels();
    emit right()->mainView()->sigRowData(rowOf(mainTable(), 1), true);
    QCOMPARE(terms->dataSource()->labels(), labels);

    // A node with an address shows the web page; a node with a view goes back
    // to the data page, and the web page keeps its place in the stack.
    QTreeView *view = frame()->leftContainer()->mainTreeView();
    const QModelIndex help = nodeNamed(view, QStringLiteral("专题说明"));
    const QString url = help.data(TFTreeItem::UrlRole).toString();
    QVERIFY(url.startsWith(m_server->baseUrl().toString()));
    emit view->clicked(help);
    QCOMPARE(frame()->stack()->currentIndex(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(QUrl(frame()->webView()->url()), QUrl::fromUserInput(url), kTimeout);
    QCOMPARE(right()->currentView(), 3110);
    emit view->clicked(nodeNamed(view, QStringLiteral("板块成分股")));
    QCOMPARE(frame()->stack()->currentIndex(), 0);
    QCOMPARE(right()->currentView(), 269);
    QCOMPARE(frame()->stack()->count(), 2);
}

void tst_Page::everyTopicOpensFromItsTree_data()
{
    QTest::addColumn<int>("topic");
    // One topic per menu of the demo catalogue.
    for (int topic : {2, 61, 311, 50, 758, 4781, 159, 4782, 4785, 4808, 4837})
        QTest::newRow(qPrintable(QString::number(topic))) << topic;
}

void tst_Page::everyTopicOpensFromItsTree()
{
    QFETCH(int, topic);
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=%1&nodecode=0").arg(topic), m_server->baseUrl());
    TFSubjectMainFrame *frame = page->mainFrame();
    QTRY_VERIFY_WITH_TIMEOUT(frame->loadingLabel()->isHidden(), kTimeout);
    // Each view leaf of the tree opens in turn.
    QTreeView *view = frame->leftContainer()->mainTreeView();
    QList<QModelIndex> leaves;
    QList<QModelIndex> walk{QModelIndex()};
    while (!walk.isEmpty()) {
        const QModelIndex parent = walk.takeFirst();
        for (int row = 0; row < view->model()->rowCount(parent); ++row) {
            const QModelIndex child = view->model()->index(row, 0, parent);
            if (view->model()->hasChildren(child))
                walk << child;
            else if (child.data(TFTreeItem::ViewIdRole).toLongLong() > 0)
                leaves << child;
        }
    }
    QVERIFY(!leaves.isEmpty());
    for (const QModelIndex &leaf : qAsConst(leaves)) {
        const qint64 id = leaf.data(TFTreeItem::ViewIdRole).toLongLong();
        emit view->clicked(leaf);
        QCOMPARE(frame->rightContainer()->currentView(), id);
        QTRY_VERIFY2_WITH_TIMEOUT(frame->rightContainer()->mainView()->currentViewId() == id,
                                  qPrintable(leaf.data().toString()), kTimeout);
        QVERIFY(!frame->rightContainer()->mainView()->currentView()->caption().isEmpty());
    }
}

void tst_Page::tableReplies_data()
{
    QTest::addColumn<TableCase>("change");
    // A query that matches nothing is still a good reply: the grid stands empty and the label tells the time.
    QTest::newRow("no match") << TableCase::NoMatch;
    QTest::newRow("service refuses an unknown view") << TableCase::UnknownView;
    QTest::newRow("nobody listens") << TableCase::ServiceDown;
    QTest::newRow("the page moved on to another view") << TableCase::PageMovedOn;
}

void tst_Page::tableReplies()
{
    QFETCH(TableCase, change);
    const bool good = change == TableCase::NoMatch;
    NtResponse config;
    QVERIFY(TFJSP::parseResponse(QString::fromUtf8(QJsonDocument(post(TFUc::viewConfigRequest(260, {}, {}))).toJson()), config));
    TFRightContainer container;
    TFSubjectTableWidget table(change == TableCase::PageMovedOn ? &container : nullptr, true);
    table.initLayout();
    table.reset(260);
    table.parseConfig(config.data, true);
    if (change == TableCase::PageMovedOn) {
        container.refreshPage(261, QStringLiteral("other"));
    } else {
        QTRY_VERIFY_WITH_TIMEOUT(settled(&table) && table.model() && table.model()->rowCount() > 0, kTimeout);
        if (change == TableCase::ServiceDown)
            TFUc::setBaseUrl(QUrl(QStringLiteral("http://127.0.0.1:9")));
        table.setViewId(change == TableCase::UnknownView ? 999999 : 260);
        table.loadData(good ? qMakePair(QStringLiteral("keywords"), QVariant("no-such-security")) : qMakePair(QString(), QVariant()));
        QVERIFY(table.timeLabel()->text().startsWith(QStringLiteral("加载中... (起始时间: ")));
        QCOMPARE(table.cursor().shape(), Qt::WaitCursor);
    }
    QTRY_VERIFY_WITH_TIMEOUT(settled(&table), kTimeout);
    QCOMPARE(kElapsed.match(table.timeLabel()->text()).hasMatch(), good);
    QCOMPARE(table.timeLabel()->text() == QStringLiteral("无数据!"), !good);
    QCOMPARE(table.cursor().shape(), Qt::ArrowCursor);
    if (good || change == TableCase::PageMovedOn)
        QVERIFY(!table.model() || table.model()->rowCount() == 0);
    if (good)
        QCOMPARE(table.total(), 0);
}

// The navigation of topic 2, with two constants riding along as rows of no
// node, and three sectors.
std::unique_ptr<HttpTestServer> tst_Page::startScript(NavReply navReply)
{
    const QString item260 = TFMenuCfg::instance()->itemOfView(QStringLiteral("260")).itemName;
    QJsonArray navigation{node(100, 2, QStringLiteral("行情"), 1, 0), node(101, 100, item260, 2, 260),
                          node(102, 100, QStringLiteral("其他"), 2, 261),
                          node(103, 2, QStringLiteral("网页"), 1, 0, QStringLiteral("about:blank"))};
    for (const QString &name : {QStringLiteral("华东"), QStringLiteral("华北")})
        navigation.append(QJsonObject{{"NODE_CODE", -1}, {"P_NODE_CODE", -2}, {"VALUE", name + "v"}, {"NAME", name},
                                      {"TYPE", "AREA"}, {"TYPE_DESC", "地区"}, {"FILTER1", "CN"}});
    const QJsonArray blocks{QJsonObject{{"SECT_ID", 5}, {"P_SECT_ID", 0}, {"SECT_NAME", "行业"}},
                            QJsonObject{{"SECT_ID", 6}, {"P_SECT_ID", 5}, {"SECT_NAME", "银行"}},
                            QJsonObject{{"SECT_ID", "7"}, {"P_SECT_ID", 5}, {"SECT_NAME", "保险"}}};
    auto server = std::make_unique<HttpTestServer>();
    server->setHandler([=](const RecordedRequest &request) {
        CannedReply reply;
        const int objId = objIdOf(request);
        if (objId == 38 && navReply == NavReply::ServerError) {
            reply.status = 500;
            reply.reason = "Internal Server Error";
        } else if (objId == 38) {
            reply.body = navReply == NavReply::BadEnvelope ? QByteArray(R"({"state":1,"msg":"","data":[]})")
                                                           : HttpTestServer::envelope(navReply == NavReply::EmptyRows ? QJsonArray() : navigation);
        } else if (objId == 43) {
            reply.body = HttpTestServer::envelope(blocks);
        } else if (objId == 390) {
            reply.body = navReply == NavReply::BadConstants ? QByteArray(R"({"state":1})")
                                                            : HttpTestServer::envelope(QJsonArray{QJsonObject{{"VALUE", "1"}, {"NAME", "n"}}});
        } else {
            reply.body = "<html><body>page</body></html>";
            reply.headers = {{"Content-Type", "text/html"}};
        }
        return reply;
    });
    return server->start() ? std::move(server) : nullptr;
}

void tst_Page::navigationReplies_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<NavReply>("reply");
    QTest::addColumn<int>("blockRequests");
    QTest::addColumn<bool>("built");
    QTest::addColumn<qint64>("view");
    QTest::addColumn<int>("stackIndex");
    const QString macro = QStringLiteral("view://subjectpage?pnodecode=61&nodecode=101");
    // Only the stock topic asks for its sectors; the node code takes precedence over the view.
    QTest::newRow("stock topic") << "view://subjectpage?pnodecode=2&objvwid=260" << NavReply::Good << 1 << true << qint64(260) << 0;
    QTest::newRow("stock code in capitals") << "view://subjectpage?PNODECODE=02&nodecode=102&objvwid=260"
                                            << NavReply::Good << 1 << true << qint64(261) << 0;
    QTest::newRow("a node with an address") << "view://subjectpage?pnodecode=2&nodecode=103" << NavReply::Good << 1
                                            << true << qint64(-1) << 1;
    QTest::newRow("macro topic, no node of it") << macro << NavReply::Good << 0 << true << qint64(-1) << 0;
    QTest::newRow("F9 topic by view") << "view://subjectpage?objvwid=1641" << NavReply::Good << 0 << true << qint64(-1) << 0;
    QTest::newRow("neither node nor view") << "view://subjectpage?pnodecode=61" << NavReply::Good << 0 << true << qint64(-1) << 0;
    // The constants ride along in the navigation reply; the reply of objId 390
    // only decides whether the table takes them.
    QTest::newRow("constants reply without its keys") << macro << NavReply::BadConstants << 0 << true << qint64(-1) << 0;
    // The loading image stays over a page whose navigation failed.
    QTest::newRow("envelope without a key") << macro << NavReply::BadEnvelope << 0 << false << qint64(-1) << 0;
    QTest::newRow("service error") << macro << NavReply::ServerError << 0 << false << qint64(-1) << 0;
    QTest::newRow("no rows, a node to select") << macro << NavReply::EmptyRows << 0 << false << qint64(-1) << 0;
    QTest::newRow("no rows, a view to select") << "view://subjectpage?objvwid=260" << NavReply::EmptyRows << 1 << false
                                               << qint64(-1) << 0;
}

void tst_Page::navigationReplies()
{
    QFETCH(QString, url);
    QFETCH(NavReply, reply);
    QFETCH(int, blockRequests);
    QFETCH(bool, built);
    QFETCH(qint64, view);
    QFETCH(int, stackIndex);
    auto server = startScript(reply);
    QVERIFY(server);
    TFCacheConfig::instance()->clear();
    if (reply == NavReply::BadEnvelope || reply == NavReply::BadConstants)
        QTest::ignoreMessage(QtDebugMsg, reply == NavReply::BadEnvelope ? "can't found the key: \"extend\""
                                                                        : "can't found the key: \"msg\"");
    auto page = openPage(url, server->baseUrl());
    TFSubjectMainFrame *frame = page->mainFrame();
    QLabel *label = frame->loadingLabel();
    QVERIFY(label->isVisible() && label->movie());
    QCOMPARE(label->size(), QSize(32, 32));
    QTRY_COMPARE_WITH_TIMEOUT(countOf(*server, 38), 1, kTimeout);
    QVERIFY(drained());
    QCOMPARE(countOf(*server, 43), blockRequests);
    QCOMPARE(label->isHidden(), built);
    QTRY_COMPARE_WITH_TIMEOUT(countOf(*server, 390), int(built), kTimeout);
    QCOMPARE(frame->rightContainer()->currentView(), view);
    QCOMPARE(frame->stack()->currentIndex(), stackIndex);
    const auto areas = [] {
        QStringList names;
        for (const TFCacheConfig::CodeRecord &record : TFCacheConfig::instance()->query("AREA", "CN"))
            names.append(record.NAME);
        return names;
    };
    QTRY_COMPARE(areas(), (built && reply == NavReply::Good ? QStringList{"华东", "华北"} : QStringList()));
    if (!built) {
        // The image is placed in the middle of the frame at each resize.
        page->resize(901, 501);
        QTRY_COMPARE(frame->size(), QSize(901, 501));
        QCOMPARE(label->pos(), QPoint(int((901 - 32) * 0.5), int((501 - 32) * 0.5)));
        return;
    }
    // A second refresh asks again and builds nothing new.
    TFRightContainer *right = frame->rightContainer();
    TFWebView *web = frame->webView();
    frame->refresh();
    QTRY_COMPARE_WITH_TIMEOUT(countOf(*server, 38), 2, kTimeout);
    QVERIFY(drained());
    QCOMPARE(countOf(*server, 43), 2 * blockRequests);
    QVERIFY(frame->rightContainer() == right && frame->webView() == web);
    QCOMPARE(frame->stack()->count(), 2);
}

void tst_Page::blockTreeAndItsFilter()
{
    auto server = startScript(NavReply::Good);
    QVERIFY(server);
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=2&objvwid=260"), server->baseUrl());
    TFSubjectMainFrame *frame = page->mainFrame();
    QTRY_COMPARE_WITH_TIMEOUT(countOf(*server, 390), 1, kTimeout);
    QVERIFY(drained());
    // The navigation's null block value keeps the tree that the block reply built.
    QCOMPARE(frame->leftContainer()->blockTreeModel()->rowCount(), 1);
    QVERIFY(frame->leftContainer()->blockTree()->isHidden());
    QCOMPARE(frame->blockFilter().first, QStringLiteral("filterBlock"));
    QCOMPARE(frame->blockFilter().second.toJsonArray(), QJsonArray());
    // A view asking for its sector shows and checks it, children included.
    emit frame->rightContainer()->sigSectorNumChanged(QStringLiteral("5"), QString());
    QVERIFY(!frame->leftContainer()->blockTree()->isHidden());
    const QJsonArray checked = frame->blockFilter().second.toJsonArray();
    QCOMPARE(checked.size(), 3);
    QVERIFY(checked.contains(5) && checked.contains(6) && checked.contains(7));
    emit frame->rightContainer()->sigSectorNumChanged(QStringLiteral("银行"), QString());
    QCOMPARE(frame->blockFilter().second.toJsonArray(), QJsonArray{6});
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_Page)

#include "tst_page.moc"
