#include "httptestserver.h"

#include "tfmenucfg.h"
#include "tfrightcontainer.h"
#include "tfsubjectmainframe.h"
#include "tfsubjectpage.h"
#include "tftreewidgetcontainer.h"
#include "tfsubjecttreewidget.h"
#include "tftreemodel.h"

#include "filterwidget/tfcacheconfig.h"
#include "tfcore/tfappconfig.h"
#include "tfcore/tfserviceconfig.h"
#include "tfcore/tfwebview.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QSplitter>
#include <QStackedWidget>
#include <QStandardItemModel>
#include <QTreeView>
#include <QThreadPool>
#include <QtTest>

#include "webenginetestmain.h"

#include <memory>

namespace {

const QByteArray kAuth = R"j("auth":{"prodId":"p1","userId":"u1"})j";

enum class NavReply { Good, BadEnvelope, ServerError, EmptyRows };

QJsonObject node(qlonglong code, qlonglong parent, const QString &caption, int level, qlonglong viewId,
                 const QString &url = QString())
{
    return QJsonObject{{"NODE_CODE", code}, {"P_NODE_CODE", parent}, {"NODE_CAP", caption}, {"LEVEL", level},
                       {"NODE_TYP", 1}, {"OBJ_VW_ID", viewId}, {"NODE_URL", url}};
}

int objIdOf(const RecordedRequest &request)
{
    return QJsonDocument::fromJson(request.body).object().value(QStringLiteral("objId")).toInt(-1);
}

QList<RecordedRequest> requestsFor(const HttpTestServer &server, int objId)
{
    QList<RecordedRequest> found;
    for (const RecordedRequest &request : server.requests()) {
        if (objIdOf(request) == objId)
            found.append(request);
    }
    return found;
}

// A data service that knows the navigation, the sectors and the constants.
struct Service
{
    QJsonArray navigation;
    QJsonArray blocks;
    NavReply navReply = NavReply::Good;
    bool constantsFail = false;

    CannedReply answer(const RecordedRequest &request) const
    {
        CannedReply reply;
        switch (objIdOf(request)) {
        case 38:
            if (navReply == NavReply::ServerError) {
                reply.status = 500;
                reply.reason = "Internal Server Error";
            } else if (navReply == NavReply::BadEnvelope) {
                reply.body = R"({"state":1,"msg":"","data":[]})";
            } else {
                reply.body = HttpTestServer::envelope(navReply == NavReply::EmptyRows ? QJsonArray() : navigation);
            }
            break;
        case 43:
            reply.body = HttpTestServer::envelope(blocks);
            break;
        case 390:
            if (constantsFail)
                reply.body = R"({"state":1})";
            else
                reply.body = HttpTestServer::envelope(QJsonArray{QJsonObject{{"VALUE", "1"}, {"NAME", "n"}}});
            break;
        default:
            reply.body = "<html><body>page</body></html>";
            reply.headers = {{"Content-Type", "text/html"}};
            break;
        }
        return reply;
    }
};

} // namespace

class tst_TFSubjectMainFrame : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void stockPageRequestsBlocksAndNavigation();
    void otherTopicsRequestNoBlocks_data();
    void otherTopicsRequestNoBlocks();
    void nodeCodeTakesPrecedence();
    void withNeitherNodeNorViewNoTreeLoads();
    void loadingImage_data();
    void loadingImage();
    void nodeWithAddressShowsTheWebPage();
    void groupChangeSetsTheWindowTitle();
    void blockTreeAndItsFilter();
    void secondRefreshRequestsAgainAndBuildsNothing();
    void constantsComeFromTheNavigationReply_data();
    void constantsComeFromTheNavigationReply();

private:
    // The service most cases need: the test's navigation, good replies.
    Service serviceWithNavigation() const;
    std::unique_ptr<HttpTestServer> startService(const Service &service);
    std::unique_ptr<TFSubjectPage> openPage(const QString &url);

    QJsonArray m_navigation;
    QString m_item260;
};

void tst_TFSubjectMainFrame::initTestCase()
{
    Q_INIT_RESOURCE(subjectpage);
    TFAppConfig::USERINFO user;
    user.userId = QStringLiteral("u1");
    TFAppConfig::instance()->setUserInfo(user);
    TFAppConfig::instance()->setProuctId(QStringLiteral("p1"));
    TFAppConfig::instance()->setAppToken(QStringLiteral("t1"));

    // The menu's record of view 260 names the node the tree selects.
    m_item260 = TFMenuCfg::instance()->itemOfView(QStringLiteral("260")).itemName;
    QVERIFY(!m_item260.isEmpty());
    m_navigation = {node(100, 2, QStringLiteral("行情"), 1, 0), node(101, 100, m_item260, 2, 260),
                    node(102, 100, QStringLiteral("其他"), 2, 261),
                    node(103, 2, QStringLiteral("网页"), 1, 0, QStringLiteral("about:blank"))};
}

Service tst_TFSubjectMainFrame::serviceWithNavigation() const
{
    Service service;
    service.navigation = m_navigation;
    return service;
}

std::unique_ptr<HttpTestServer> tst_TFSubjectMainFrame::startService(const Service &service)
{
    auto server = std::make_unique<HttpTestServer>();
    server->setHandler([service](const RecordedRequest &request) { return service.answer(request); });
    if (!server->start())
        return nullptr;
    TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), server->baseUrl());
    return server;
}

std::unique_ptr<TFSubjectPage> tst_TFSubjectMainFrame::openPage(const QString &url)
{
    auto page = std::make_unique<TFSubjectPage>();
    page->resize(1000, 600);
    page->show();
    page->init(QUrl(url), QVariant());
    return page;
}

void tst_TFSubjectMainFrame::stockPageRequestsBlocksAndNavigation()
{
    Service service = serviceWithNavigation();
    service.blocks = {QJsonObject{{"SECT_ID", 5}, {"P_SECT_ID", 0}, {"SECT_NAME", "行业"}}};
    auto server = startService(service);
    QVERIFY(server);
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=2&objvwid=260&title=股票专题"));
    TFSubjectMainFrame *frame = page->mainFrame();

    QTRY_COMPARE_WITH_TIMEOUT(requestsFor(*server, 390).size(), 1, 10000);
    const auto blocks = requestsFor(*server, 43);
    const auto navigation = requestsFor(*server, 38);
    QCOMPARE(blocks.size(), 1);
    QCOMPARE(navigation.size(), 1);
    QCOMPARE(blocks.first().target, QByteArray("/bas/ds/data"));
    QCOMPARE(blocks.first().body, QByteArray("{" + kAuth + R"j(,"filter":"(SECU_TYP_CODE == :SECU_TYP_CODE)",)j"
                                             R"j("filterParams":{"SECU_TYP_CODE":10},"objId":43})j"));
    QCOMPARE(navigation.first().target, QByteArray("/bas/ds/data"));
    QCOMPARE(navigation.first().body, QByteArray(R"j({"P_NODE_CODE":2,)j" + kAuth + R"j(,"objId":38})j"));
    QCOMPARE(requestsFor(*server, 390).first().body, QByteArray("{" + kAuth + R"j(,"objId":390})j"));

    // The tree stands, the view of the URL is open, the image is gone.
    QVERIFY(frame->loadingLabel()->isHidden());
    QCOMPARE(frame->leftContainer()->title(), QStringLiteral("股票专题"));
    QCOMPARE(frame->rightContainer()->currentView(), 260);
    QCOMPARE(frame->stack()->currentIndex(), 0);
    QCOMPARE(frame->leftContainer()->mainTreeView()->currentIndex().data().toString(), m_item260);
}

void tst_TFSubjectMainFrame::otherTopicsRequestNoBlocks_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<int>("pNodeCode");
    QTest::newRow("macro topic") << "view://subjectpage?pnodecode=61&nodecode=101" << 61;
    QTest::newRow("F9 topic by view") << "view://subjectpage?objvwid=1641" << 190;
    QTest::newRow("unknown view") << "view://subjectpage?objvwid=5&nodecode=101" << -1;
    QTest::newRow("stock code written in capitals") << "view://subjectpage?PNODECODE=02&nodecode=101" << 2;
}

void tst_TFSubjectMainFrame::otherTopicsRequestNoBlocks()
{
    QFETCH(QString, url);
    QFETCH(int, pNodeCode);
    auto server = startService(serviceWithNavigation());
    QVERIFY(server);
    auto page = openPage(url);

    QTRY_COMPARE_WITH_TIMEOUT(requestsFor(*server, 38).size(), 1, 10000);
    QCOMPARE(QJsonDocument::fromJson(requestsFor(*server, 38).first().body).object().value("P_NODE_CODE").toInt(),
             pNodeCode);
    // Every request has run and its reply is among the posted events: what
    // has not happened by now does not happen.
    QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(requestsFor(*server, 43).size(), pNodeCode == 2 ? 1 : 0);
}

void tst_TFSubjectMainFrame::nodeCodeTakesPrecedence()
{
    auto server = startService(serviceWithNavigation());
    QVERIFY(server);
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=2&nodecode=102&objvwid=260"));
    QTRY_COMPARE_WITH_TIMEOUT(page->mainFrame()->rightContainer()->currentView(), 261, 10000);
    QCOMPARE(page->mainFrame()->rightContainer()->title(), QStringLiteral("其他"));
}

void tst_TFSubjectMainFrame::withNeitherNodeNorViewNoTreeLoads()
{
    auto server = startService(serviceWithNavigation());
    QVERIFY(server);
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=61&title=Macro"));
    TFSubjectMainFrame *frame = page->mainFrame();
    QTRY_COMPARE_WITH_TIMEOUT(requestsFor(*server, 390).size(), 1, 10000);
    QTRY_VERIFY(frame->loadingLabel()->isHidden());
    QVERIFY(!frame->leftContainer()->mainTreeModel());
    QCOMPARE(frame->rightContainer()->currentView(), -1);
    QCOMPARE(frame->leftContainer()->title(), QStringLiteral("macro"));
}

void tst_TFSubjectMainFrame::loadingImage_data()
{
    QTest::addColumn<int>("reply");
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("hidden");
    QTest::newRow("good reply") << int(NavReply::Good) << "view://subjectpage?pnodecode=61&nodecode=101" << true;
    QTest::newRow("envelope without a key") << int(NavReply::BadEnvelope)
                                            << "view://subjectpage?pnodecode=61&nodecode=101" << false;
    QTest::newRow("service error") << int(NavReply::ServerError) << "view://subjectpage?pnodecode=61&nodecode=101"
                                   << false;
    QTest::newRow("no rows, a node to select") << int(NavReply::EmptyRows)
                                               << "view://subjectpage?pnodecode=61&nodecode=101" << false;
    QTest::newRow("no rows, a view to select") << int(NavReply::EmptyRows) << "view://subjectpage?objvwid=260"
                                               << false;
}

void tst_TFSubjectMainFrame::loadingImage()
{
    QFETCH(int, reply);
    QFETCH(QString, url);
    QFETCH(bool, hidden);
    Service service = serviceWithNavigation();
    service.navReply = NavReply(reply);
    auto server = startService(service);
    QVERIFY(server);
    if (service.navReply == NavReply::BadEnvelope)
        QTest::ignoreMessage(QtDebugMsg, "can't found the key: \"extend\"");
    auto page = openPage(url);
    QLabel *label = page->mainFrame()->loadingLabel();
    QVERIFY(label->isVisible());
    QVERIFY(label->movie());
    QCOMPARE(label->size(), QSize(32, 32));

    QTRY_COMPARE_WITH_TIMEOUT(requestsFor(*server, 38).size(), 1, 10000);
    if (hidden) {
        QTRY_VERIFY_WITH_TIMEOUT(label->isHidden(), 10000);
        QTRY_COMPARE(requestsFor(*server, 390).size(), 1);
    } else {
        // Every request has run and its reply is among the posted events: what
        // has not happened by now does not happen.
        QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
        QCoreApplication::sendPostedEvents();
        QVERIFY(label->isVisible());
        // The image is placed in the middle of the frame at each resize.
        page->resize(901, 501);
        QWidget *frame = page->mainFrame();
        QTRY_COMPARE(frame->size(), QSize(901, 501));
        QCOMPARE(label->pos(), QPoint(int((901 - 32) * 0.5), int((501 - 32) * 0.5)));
        QCOMPARE(requestsFor(*server, 390).size(), 0);
    }
}

void tst_TFSubjectMainFrame::nodeWithAddressShowsTheWebPage()
{
    auto server = startService(serviceWithNavigation());
    QVERIFY(server);
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=2&nodecode=103"));
    TFSubjectMainFrame *frame = page->mainFrame();
    QTRY_COMPARE_WITH_TIMEOUT(frame->stack()->currentIndex(), 1, 10000);
    QCOMPARE(frame->stack()->currentWidget(), static_cast<QWidget *>(frame->webView()));
    QCOMPARE(frame->rightContainer()->currentView(), -1);

    // A node with a view goes back to the data page; the web page stays in the stack.
    TFTreeWidgetContainer *tree = frame->leftContainer();
    const QModelIndex view260 = tree->mainTreeModel()->match(tree->mainTreeModel()->index(0, 0),
                                                             TFTreeItem::ViewIdRole, 260, 1,
                                                             Qt::MatchRecursive).value(0);
    QVERIFY(view260.isValid());
    tree->slotMainTreeItemClicked(tree->mainTreeModel()->itemFromIndex(view260));
    QCOMPARE(frame->stack()->currentIndex(), 0);
    QCOMPARE(frame->rightContainer()->currentView(), 260);
    QCOMPARE(frame->stack()->count(), 2);
}

void tst_TFSubjectMainFrame::groupChangeSetsTheWindowTitle()
{
    auto server = startService(serviceWithNavigation());
    QVERIFY(server);
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=2&nodecode=102&title=Stocks"));
    TFSubjectMainFrame *frame = page->mainFrame();
    // Selecting the leaf under the level-1 group "行情" names the group.
    QTRY_COMPARE_WITH_TIMEOUT(frame->windowTitle(), QStringLiteral("stocks:行情"), 10000);
    emit frame->leftContainer()->groupChanged(QString());
    QCOMPARE(frame->windowTitle(), QStringLiteral("stocks"));
}

void tst_TFSubjectMainFrame::blockTreeAndItsFilter()
{
    Service service = serviceWithNavigation();
    service.blocks = {QJsonObject{{"SECT_ID", 5}, {"P_SECT_ID", 0}, {"SECT_NAME", "行业"}},
                      QJsonObject{{"SECT_ID", 6}, {"P_SECT_ID", 5}, {"SECT_NAME", "银行"}},
                      QJsonObject{{"SECT_ID", "7"}, {"P_SECT_ID", 5}, {"SECT_NAME", "保险"}}};
    auto server = startService(service);
    QVERIFY(server);
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=2&objvwid=260"));
    TFSubjectMainFrame *frame = page->mainFrame();
    QTRY_VERIFY_WITH_TIMEOUT(frame->leftContainer()->blockTreeModel()
                                 && frame->leftContainer()->blockTreeModel()->rowCount() == 1, 10000);
    QTRY_COMPARE(requestsFor(*server, 390).size(), 1);
    // The navigation's null block value keeps the tree that the block reply built.
    QCOMPARE(frame->leftContainer()->blockTreeModel()->rowCount(), 1);
    QVERIFY(frame->leftContainer()->blockTree()->isHidden());

    QCOMPARE(frame->blockFilter().first, QStringLiteral("filterBlock"));
    QCOMPARE(frame->blockFilter().second.toJsonArray(), QJsonArray());
    // A view asking for its sector shows and checks it, children included.
    emit frame->rightContainer()->sigSectorNumChanged(QStringLiteral("5"), QString());
    QVERIFY(!frame->leftContainer()->blockTree()->isHidden());
    QJsonArray checked = frame->blockFilter().second.toJsonArray();
    QCOMPARE(checked.size(), 3);
    QVERIFY(checked.contains(5) && checked.contains(6) && checked.contains(7));
    emit frame->rightContainer()->sigSectorNumChanged(QStringLiteral("银行"), QString());
    QCOMPARE(frame->blockFilter().second.toJsonArray(), QJsonArray{6});
}

void tst_TFSubjectMainFrame::secondRefreshRequestsAgainAndBuildsNothing()
{
    auto server = startService(serviceWithNavigation());
    QVERIFY(server);
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=2&objvwid=260"));
    TFSubjectMainFrame *frame = page->mainFrame();
    QTRY_COMPARE_WITH_TIMEOUT(requestsFor(*server, 390).size(), 1, 10000);
    TFRightContainer *right = frame->rightContainer();
    TFWebView *web = frame->webView();
    frame->refresh();
    QTRY_COMPARE_WITH_TIMEOUT(requestsFor(*server, 38).size(), 2, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(requestsFor(*server, 43).size(), 2, 10000);
    QCOMPARE(frame->rightContainer(), right);
    QCOMPARE(frame->webView(), web);
    QCOMPARE(frame->stack()->count(), 2);
}

void tst_TFSubjectMainFrame::constantsComeFromTheNavigationReply_data()
{
    QTest::addColumn<bool>("constantsFail");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("constants reply good") << false << QStringList{"华东", "华北"};
    QTest::newRow("constants reply without its keys") << true << QStringList();
}

void tst_TFSubjectMainFrame::constantsComeFromTheNavigationReply()
{
    QFETCH(bool, constantsFail);
    QFETCH(QStringList, names);
    // The constants ride along in the navigation reply as rows of no node;
    // the reply of objId 390 only decides whether the table takes them.
    Service service = serviceWithNavigation();
    service.constantsFail = constantsFail;
    for (const QString &name : {QStringLiteral("华东"), QStringLiteral("华北")})
        service.navigation.append(QJsonObject{{"NODE_CODE", -1}, {"P_NODE_CODE", -2}, {"VALUE", name + "v"},
                                              {"NAME", name}, {"TYPE", "AREA"}, {"TYPE_DESC", "地区"},
                                              {"FILTER1", "CN"}});
    TFCacheConfig::instance()->clear();
    auto server = startService(service);
    QVERIFY(server);
    if (constantsFail)
        QTest::ignoreMessage(QtDebugMsg, "can't found the key: \"msg\"");
    auto page = openPage(QStringLiteral("view://subjectpage?pnodecode=61&nodecode=101"));
    QTRY_COMPARE_WITH_TIMEOUT(requestsFor(*server, 390).size(), 1, 10000);
    const auto cached = [] {
        QStringList found;
        for (const TFCacheConfig::CodeRecord &record : TFCacheConfig::instance()->query("AREA", "CN"))
            found.append(record.NAME);
        return found;
    };
    if (constantsFail)
        QTest::qWait(500);     // the ignored message proves the reply was read
    QTRY_COMPARE(cached(), names);
    TFCacheConfig::instance()->clear();
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_TFSubjectMainFrame)

#include "tst_tfsubjectmainframe.moc"
