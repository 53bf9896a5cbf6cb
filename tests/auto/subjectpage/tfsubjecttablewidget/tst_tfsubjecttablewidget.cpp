#include "tfrightcontainer.h"
#include "tfsubjecttablewidget.h"

#include "filterwidget/tffilterwidget.h"
#include "httpservice/tfwxrshttp.h"
#include "jsonparser/tfjsonparser.h"
#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "mulittable/tfsujecttableview.h"
#include "net/tfjsp.h"
#include "net/tfuc.h"
#include "pagination/tfpaginationbar.h"

#include "bandgrid.h"
#include "subjectservice.h"
#include "tfcore/tfcore.h"
#include "tfcore/tfserviceconfig.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLayout>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <memory>

namespace {

const char kServiceKey[] = "servercfg.ini:Subject";
const QRegularExpression kElapsed(QStringLiteral("^耗时 \\d+\\.\\d{4} 秒$"));

// The host's main window as far as links go: it records what it is asked to open.
class LinkWindow : public QWidget
{
    Q_OBJECT
public:
    Q_INVOKABLE void openStringUrl(const QString &url) { urls.append(url); }
    QStringList urls;
};

// Counts the grids a table widget builds: each reply that is shown puts a
// new grid into the holder under the filter bar.
class GridCounter : public QObject
{
public:
    explicit GridCounter(TFSubjectTableWidget *widget)
    {
        QWidget *holder = widget->layout()->itemAt(1)->widget();
        holder->installEventFilter(this);
    }
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::ChildAdded
            && qobject_cast<TFSujectTableView *>(static_cast<QChildEvent *>(event)->child()))
            ++count;
        return false;
    }
};

bool settled(const TFSubjectTableWidget &widget)
{
    const QString text = widget.timeLabel()->text();
    return kElapsed.match(text).hasMatch() || text == QStringLiteral("无数据!");
}

} // namespace

class tst_TFSubjectTableWidget : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void init();

    void layoutAndRoles_data();
    void layoutAndRoles();
    void configurationThenRows();
    void pageChange();
    void emptyResult();
    void failedRequests_data();
    void failedRequests();
    void staleReplyForAnEarlierView();
    void identicalRequestsInFlight();
    void repeatedQueryRebuilds();
    void childViewShowsOnlyTheLabel();
    void linksGoToTheMainWindow();
    void screenshot();

private:
    QJsonValue configuration(qint64 viewId);
    QJsonObject post(const TFUc::TFRequestContent &content);
    std::unique_ptr<TFSubjectTableWidget> openView(qint64 viewId, QWidget *parent = nullptr);

    QTemporaryDir m_dir;
    std::unique_ptr<SubjectService::Server> m_server;
};

void tst_TFSubjectTableWidget::initTestCase()
{
    TFTableModelData::registerRowDataType();
    QVERIFY(m_dir.isValid());
    QCoreApplication::setOrganizationDomain(m_dir.path());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_dir.path());
    SubjectService::Options options;
    options.dbPath = m_dir.filePath(QStringLiteral("table.sqlite"));
    m_server.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_server->start(&error), qPrintable(error));
}

void tst_TFSubjectTableWidget::cleanupTestCase()
{
    if (m_server)
        m_server->stop();
}

void tst_TFSubjectTableWidget::init()
{
    TFServiceConfig::instance()->setHttpUrl(QLatin1String(kServiceKey), m_server->baseUrl());
}

QJsonObject tst_TFSubjectTableWidget::post(const TFUc::TFRequestContent &content)
{
    const auto result = TFWXRSHttp::post(content.url, content.body, TFWXRSHttp::buildHeaders(QString(), QString(), QString()));
    return QJsonDocument::fromJson(result.data).object();
}

QJsonValue tst_TFSubjectTableWidget::configuration(qint64 viewId)
{
    TFUc::setBaseUrl(m_server->baseUrl());
    NtResponse response;
    const QJsonObject reply = post(TFUc::viewConfigRequest(viewId, {}, {}));
    if (!TFJSP::parseResponse(QString::fromUtf8(QJsonDocument(reply).toJson()), response))
        return QJsonValue();
    return response.data;
}

std::unique_ptr<TFSubjectTableWidget> tst_TFSubjectTableWidget::openView(qint64 viewId, QWidget *parent)
{
    std::unique_ptr<TFSubjectTableWidget> widget(new TFSubjectTableWidget(parent, true));
    widget->initLayout();
    widget->resize(1200, 600);
    widget->reset(viewId);
    const QJsonValue config = configuration(viewId);
    if (!config.isObject())
        return nullptr;
    widget->parseConfig(config, true);
    return widget;
}

void tst_TFSubjectTableWidget::layoutAndRoles_data()
{
    QTest::addColumn<bool>("isMain");
    QTest::newRow("main view") << true;
    QTest::newRow("child view") << false;
}

void tst_TFSubjectTableWidget::layoutAndRoles()
{
    QFETCH(bool, isMain);
    TFSubjectTableWidget widget(nullptr, isMain);
    widget.initLayout();
    widget.show();
    QCOMPARE(widget.viewType(), 0);
    QCOMPARE(widget.filterWidget()->objectName(), QStringLiteral("filterWidget"));
    QCOMPARE(widget.timeLabel()->objectName(), QStringLiteral("TimeSpendLabel"));
    QCOMPARE(widget.timeLabel()->alignment(), Qt::AlignCenter);
    QVERIFY(widget.findChild<QFrame *>(QStringLiteral("pageBar")));
    QCOMPARE(widget.filterWidget()->isVisible(), isMain);
    QCOMPARE(widget.isFilterBarVisible(), isMain);
    QVERIFY(!widget.grid());

    widget.startLoading();
    QVERIFY(widget.timeLabel()->text().startsWith(QStringLiteral("加载中... (起始时间: ")));
    QCOMPARE(widget.cursor().shape(), Qt::WaitCursor);
    widget.noData();
    QCOMPARE(widget.timeLabel()->text(), QStringLiteral("无数据!"));
    QCOMPARE(widget.cursor().shape(), Qt::ArrowCursor);
    widget.finished();
    QVERIFY2(kElapsed.match(widget.timeLabel()->text()).hasMatch(), qPrintable(widget.timeLabel()->text()));

    widget.setPageBarVisible(false);
    QVERIFY(!widget.findChild<QFrame *>(QStringLiteral("pageBar"))->isVisible());
}

void tst_TFSubjectTableWidget::configurationThenRows()
{
    auto widget = openView(260);
    QVERIFY(widget);
    QCOMPARE(widget->caption(), QStringLiteral("沪深A股行情"));
    QVERIFY(!widget->header()->leaves().isEmpty());
    QTRY_VERIFY_WITH_TIMEOUT(settled(*widget), 30000);
    QVERIFY2(kElapsed.match(widget->timeLabel()->text()).hasMatch(), qPrintable(widget->timeLabel()->text()));

    // The rows request went out with flag 1 and the first page.
    const QJsonObject body = QJsonDocument::fromJson(widget->sentContent().body).object();
    QCOMPARE(body.value("flag").toInt(), 1);
    QCOMPARE(body.value("obj_vw_id").toInt(), 260);
    QCOMPARE(body.value("page").toInt(), 1);

    // What the service answers to that very request is what the model holds.
    const QJsonObject reply = post(widget->sentContent());
    const QJsonArray rows = reply.value("data").toObject().value("Data").toArray();
    QVERIFY(!rows.isEmpty());
    TFSubjectTableModel *model = widget->model();
    QVERIFY(model);
    QCOMPARE(model->rowCount(), rows.size());
    QCOMPARE(model->columnCount(), widget->header()->leaves().size());
    const int code = widget->header()->leafCaptions().indexOf(QStringLiteral("证券代码"));
    const int name = widget->header()->leafCaptions().indexOf(QStringLiteral("证券简称"));
    QVERIFY(code >= 0 && name >= 0);
    for (int r : {0, 1, rows.size() - 1}) {
        QCOMPARE(model->index(r, code).data().toString(), rows.at(r).toObject().value("SECU_CODE").toString());
        QCOMPARE(model->index(r, name).data().toString(), rows.at(r).toObject().value("SECU_SHT").toString());
    }

    // The grid shows the model, banded, with the view's two frozen columns.
    TFSujectTableView *grid = widget->grid();
    QVERIFY(grid);
    QCOMPARE(grid->model(), model);
    QVERIFY(grid->grid()->bandedView());
    QCOMPARE(grid->view()->frozenColumnCount(), 2);
    QCOMPARE(grid->view()->column(name)->editorKind(), BandGrid::EditorKind::Link);

    // The page bar carries the summary.
    const int total = widget->total();
    QVERIFY(total >= rows.size());
    QCOMPARE(widget->paginationBar()->totalCount(), qint64(total));
    QCOMPARE(widget->paginationBar()->currentPage(), qint64(1));
}

void tst_TFSubjectTableWidget::pageChange()
{
    auto widget = openView(260);
    QVERIFY(widget);
    QTRY_VERIFY_WITH_TIMEOUT(settled(*widget), 30000);
    TFSubjectTableModel *first = widget->model();
    QVERIFY(first && first->rowCount() > 0);
    const QString firstCode = first->index(0, 0).data().toString();
    const int perPage = int(widget->paginationBar()->perCount());
    QVERIFY2(widget->total() > perPage, "the demo view needs a second page");

    QSignalSpy spy(widget->paginationBar(), &TFPaginationBar::signalCurrentPageChanged);
    QMetaObject::invokeMethod(widget->paginationBar(), "on_nextButton_clicked");
    QCOMPARE(spy.count(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(widget->model() && widget->model() != first && settled(*widget), 30000);

    const QJsonObject body = QJsonDocument::fromJson(widget->sentContent().body).object();
    QCOMPARE(body.value("page").toInt(), 2);
    QCOMPARE(body.value("size").toInt(), perPage);
    const QJsonArray rows = post(widget->sentContent()).value("data").toObject().value("Data").toArray();
    QCOMPARE(widget->model()->rowCount(), rows.size());
    QCOMPARE(widget->model()->index(0, 0).data().toString(), rows.at(0).toObject().value("SECU_CODE").toString());
    QVERIFY(widget->model()->index(0, 0).data().toString() != firstCode);
    QCOMPARE(widget->paginationBar()->currentPage(), qint64(2));
}

void tst_TFSubjectTableWidget::emptyResult()
{
    // A query that matches nothing is still a good reply: the grid stands
    // empty and the label tells the time.
    auto widget = openView(260);
    QVERIFY(widget);
    QTRY_VERIFY_WITH_TIMEOUT(settled(*widget), 30000);
    widget->loadData(qMakePair(QStringLiteral("keywords"), QVariant(QStringLiteral("no-such-security"))));
    QTRY_VERIFY_WITH_TIMEOUT(settled(*widget) && widget->model() && widget->model()->rowCount() == 0, 30000);
    QVERIFY2(kElapsed.match(widget->timeLabel()->text()).hasMatch(), qPrintable(widget->timeLabel()->text()));
    QCOMPARE(widget->total(), 0);
}

void tst_TFSubjectTableWidget::failedRequests_data()
{
    QTest::addColumn<qint64>("viewId");
    QTest::addColumn<bool>("serviceDown");

    QTest::newRow("service refuses an unknown view") << qint64(999999) << false;
    QTest::newRow("nobody listens") << qint64(260) << true;
}

void tst_TFSubjectTableWidget::failedRequests()
{
    QFETCH(qint64, viewId);
    QFETCH(bool, serviceDown);

    auto widget = openView(260);
    QVERIFY(widget);
    QTRY_VERIFY_WITH_TIMEOUT(settled(*widget), 30000);
    if (serviceDown)
        TFUc::setBaseUrl(QUrl(QStringLiteral("http://127.0.0.1:9")));
    widget->setViewId(viewId);
    widget->loadData(qMakePair(QString(), QVariant()));
    QVERIFY(widget->timeLabel()->text().startsWith(QStringLiteral("加载中...")));
    QTRY_COMPARE_WITH_TIMEOUT(widget->timeLabel()->text(), QStringLiteral("无数据!"), 30000);
    QCOMPARE(widget->cursor().shape(), Qt::ArrowCursor);
    TFUc::setBaseUrl(m_server->baseUrl());
}

void tst_TFSubjectTableWidget::staleReplyForAnEarlierView()
{
    TFRightContainer container;
    auto widget = openView(260, &container);
    QVERIFY(widget);
    // The page has moved on to another view before the rows arrive.
    container.refreshPage(261, QStringLiteral("other"));
    QCOMPARE(container.currentView(), qint64(261));
    QTRY_VERIFY_WITH_TIMEOUT(settled(*widget), 30000);
    QCOMPARE(widget->timeLabel()->text(), QStringLiteral("无数据!"));
    QVERIFY(!widget->model() || widget->model()->rowCount() == 0);
    widget.reset();
}

void tst_TFSubjectTableWidget::identicalRequestsInFlight()
{
    auto widget = openView(260);
    QVERIFY(widget);
    QTRY_VERIFY_WITH_TIMEOUT(settled(*widget), 30000);

    GridCounter grids(widget.get());
    widget->loadData(qMakePair(QString(), QVariant()));
    const QByteArray firstBody = widget->sentContent().body;
    widget->loadData(qMakePair(QString(), QVariant()));
    QCOMPARE(widget->sentContent().body, firstBody);

    // The first reply builds a grid; the second finds its rows on screen
    // already and only tells the time.
    QTRY_VERIFY_WITH_TIMEOUT(grids.count >= 1 && settled(*widget), 30000);
    // Every request has run and its reply is among the posted events: what
    // has not happened by now does not happen.
    QVERIFY(QThreadPool::globalInstance()->waitForDone(30000));
    QCoreApplication::sendPostedEvents();
    QCOMPARE(grids.count, 1);
    QVERIFY2(kElapsed.match(widget->timeLabel()->text()).hasMatch(), qPrintable(widget->timeLabel()->text()));
    QVERIFY(widget->model()->rowCount() > 0);
}

void tst_TFSubjectTableWidget::repeatedQueryRebuilds()
{
    auto widget = openView(260);
    QVERIFY(widget);
    QTRY_VERIFY_WITH_TIMEOUT(settled(*widget), 30000);
    // The same query after its reply has come goes out again and builds anew.
    GridCounter grids(widget.get());
    for (int round = 1; round <= 2; ++round) {
        TFSujectTableView *before = widget->grid();
        widget->loadData(qMakePair(QString(), QVariant()));
        QTRY_VERIFY_WITH_TIMEOUT(widget->grid() != before && settled(*widget), 30000);
        QCOMPARE(grids.count, round);
        QVERIFY(widget->model()->rowCount() > 0);
    }
}

void tst_TFSubjectTableWidget::childViewShowsOnlyTheLabel()
{
    TFSubjectTableWidget child(nullptr, false);
    child.initLayout();
    child.startLoading();
    QVERIFY(child.handleResponse(configuration(260), QString(), 0));
    QVERIFY(child.timeLabel()->text().startsWith(QStringLiteral("加载中...")));
    QVERIFY(!child.grid());
    QVERIFY(!child.handleResponse(QJsonValue(), QString(), 7));
    QCOMPARE(child.timeLabel()->text(), QStringLiteral("无数据!"));
}

void tst_TFSubjectTableWidget::linksGoToTheMainWindow()
{
    LinkWindow window;
    TFCore::instance()->setMainWindow(&window);
    auto widget = openView(260);
    QVERIFY(widget);
    QTRY_VERIFY_WITH_TIMEOUT(settled(*widget) && widget->grid(), 30000);
    emit widget->grid()->linkActivated(QString());
    emit widget->grid()->linkActivated(QStringLiteral("view://subjectpage?objvwid=1641&secu_id=1"));
    QCOMPARE(window.urls, QStringList{QStringLiteral("view://subjectpage?objvwid=1641&secu_id=1")});
    TFCore::instance()->setMainWindow(nullptr);
}

void tst_TFSubjectTableWidget::screenshot()
{
    const QString path = qEnvironmentVariable("TABLEWIDGET_SCREENSHOT");
    if (path.isEmpty())
        QSKIP("set TABLEWIDGET_SCREENSHOT to a file name to keep a picture");
    auto widget = openView(260);
    QVERIFY(widget);
    widget->resize(1600, 900);
    widget->show();
    QTRY_VERIFY_WITH_TIMEOUT(settled(*widget), 30000);
    QTest::qWait(100);
    QVERIFY(widget->grab().save(path));
}

QTEST_MAIN(tst_TFSubjectTableWidget)
#include "tst_tfsubjecttablewidget.moc"
