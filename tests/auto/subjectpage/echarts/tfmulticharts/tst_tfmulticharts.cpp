#include "echarts/tfmulticharts.h"

#include "catalogue.h"
#include "configurationdocument.h"
#include "httptestserver.h"
#include "subjectservice.h"
#include "tfcore/tfserviceconfig.h"

#include <QApplication>
#include <QDesktopServices>
#include <QEventLoop>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>
#include <QTemporaryDir>
#include <QTimer>
#include <QWebEngineView>
#include <QtTest>

#include "webenginetestmain.h"

#include <memory>

using namespace SubjectService;

// Receives the addresses that the page hands to the desktop.
class UrlCatcher : public QObject
{
    Q_OBJECT
public:
    QList<QUrl> urls;
public slots:
    void open(const QUrl &url) { urls.append(url); }
};

// The chart view with its page in the web engine, fed with the
// configuration that the reference service makes of catalogue views.
class tst_TFMultiCharts : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void requestsTheWholeSet();
    void badReplyKeepsTheChart_data();
    void badReplyKeepsTheChart();
    void drawsEachMode_data();
    void drawsEachMode();
    void dataBeforeThePageIsDrawnOnce();
    void skinReachesThePage();
    void foreignNavigationIsRefused();
    void saveWritesAPicture();

private:
    std::unique_ptr<TFMultiCharts> makeChart(qint64 viewId, const QJsonArray &rows, bool waitForPage);
    QJsonObject document(qint64 viewId, const QJsonArray &rows = {}) const;
    Catalogue m_catalogue;
    QTemporaryDir m_dir;
    std::unique_ptr<Server> m_server;
};

static QVariant evaluate(TFMultiCharts *chart, const QString &script)
{
    QVariant result;
    bool done = false;
    chart->webView()->page()->runJavaScript(script, [&](const QVariant &value) {
        result = value;
        done = true;
    });
    if (!QTest::qWaitFor([&] { return done; }, 10000))
        return QStringLiteral("no answer from the page");
    return result;
}

static QJsonArray rowsOf(const char *json)
{
    return QJsonDocument::fromJson(QByteArray(json)).array();
}

static const char kGdpRows[] = R"j([{"PERIOD_NAME":"2024Q1","PRIMARY_IND":11538,"SECONDARY_IND":61683,"TERTIARY_IND":76617,"GDP_YOY":5.3},
    {"PERIOD_NAME":"2024Q2","PRIMARY_IND":18000,"SECONDARY_IND":70000,"TERTIARY_IND":82222,"GDP_YOY":4.7}])j";
static const char kRatingRows[] = R"j([{"RATING":"AAA","BOND_CNT":12,"ISSUE_AMT":3456000000},{"RATING":"AA+","BOND_CNT":30,"ISSUE_AMT":1234560000}])j";

void tst_TFMultiCharts::initTestCase()
{
    QString error;
    QVERIFY2(m_catalogue.load(&error), qPrintable(error));
    QVERIFY(m_dir.isValid());
    Options options;
    options.dbPath = m_dir.filePath("charts.sqlite");
    m_server.reset(new Server(options));
    QVERIFY2(m_server->start(&error), qPrintable(error));
    TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), m_server->baseUrl());
}

void tst_TFMultiCharts::cleanupTestCase()
{
    if (m_server)
        m_server->stop();
}

// A main chart view asks for its rows itself, all of them in one reply, and
// counts as settling until they are drawn.
void tst_TFMultiCharts::requestsTheWholeSet()
{
    TFMultiCharts chart;
    chart.resize(800, 500);
    chart.show();
    chart.setViewId(611);
    chart.parseConfig(document(611), true);
    chart.requestData();
    QVERIFY(chart.property("settling").toBool());
    QVERIFY(chart.params().size() >= 1);
    // 120 months, of which the chart shows the last 48, oldest first.
    QTRY_COMPARE_WITH_TIMEOUT(chart.dataSource()->labels().size(), 48, 30000);
    QCOMPARE(chart.dataSource()->labels().first(), QStringLiteral("2021-01"));
    QCOMPARE(chart.dataSource()->labels().last(), QStringLiteral("2024-12"));
    QTRY_COMPARE_WITH_TIMEOUT(chart.property("settling").toBool(), false, 30000);
    QCOMPARE(evaluate(&chart, "option.xAxis.data.length").toInt(), 48);
    QCOMPARE(evaluate(&chart, "drawCount").toInt(), 1);
}

QJsonObject tst_TFMultiCharts::document(qint64 viewId, const QJsonArray &rows) const
{
    const ViewDefinition *view = m_catalogue.view(viewId);
    if (!view)
        return {};
    return ConfigurationDocument::document(*view, rows, ConfigurationDocument::summary({}));
}

std::unique_ptr<TFMultiCharts> tst_TFMultiCharts::makeChart(qint64 viewId, const QJsonArray &rows, bool waitForPage)
{
    auto chart = std::make_unique<TFMultiCharts>();
    chart->resize(800, 500);
    chart->show();
    if (waitForPage && !QTest::qWaitFor([&] { return chart->isPageReady(); }, 30000))
        return nullptr;
    chart->parseConfig(document(viewId), true);
    chart->handleResponse(QJsonObject { { "Data", rows } }, QString(), 1);
    return chart;
}

// A reply that is no envelope leaves the chart as it was; one whose rows
// are not what they should be draws what is valid.
void tst_TFMultiCharts::badReplyKeepsTheChart_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("draws");          // messages drawn after the first chart
    QTest::addColumn<QString>("firstData");  // the first series' data the page holds then

    QTest::newRow("empty body") << QByteArray() << 0 << QStringLiteral("1,2");
    QTest::newRow("not JSON") << QByteArray("<html>busy</html>") << 0 << QStringLiteral("1,2");
    QTest::newRow("texts where numbers belong")
        << HttpTestServer::envelope(QJsonObject { { "Data", rowsOf(R"j([{"PERIOD_NAME":"Q1","PRIMARY_IND":"x"},
                                                                      {"PERIOD_NAME":"Q2","PRIMARY_IND":[1]}])j") } })
        << 1 << QStringLiteral("0,0");
}

void tst_TFMultiCharts::badReplyKeepsTheChart()
{
    QFETCH(QByteArray, body);
    QFETCH(int, draws);
    QFETCH(QString, firstData);

    auto chart = makeChart(612, rowsOf(kGdpRows), true);
    QVERIFY(chart);
    QTRY_COMPARE_WITH_TIMEOUT(evaluate(chart.get(), "drawCount").toInt(), 1, 10000);

    HttpTestServer server;
    server.setHandler([body](const RecordedRequest &) {
        CannedReply reply;
        reply.body = body;
        return reply;
    });
    QVERIFY(server.start());
    TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), server.baseUrl());
    chart->setViewId(612);
    chart->requestData();
    QTRY_COMPARE_WITH_TIMEOUT(server.requestCount(), 1, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(chart->property("settling").toBool(), false, 10000);
    TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), m_server->baseUrl());
    QCOMPARE(evaluate(chart.get(), "drawCount").toInt(), 1 + draws);
    QCOMPARE(evaluate(chart.get(), "option.series[0].data.join(',')").toString(), firstData);
}

void tst_TFMultiCharts::drawsEachMode_data()
{
    QTest::addColumn<qint64>("viewId");
    QTest::addColumn<QJsonArray>("rows");
    QTest::addColumn<QStringList>("types");

    QTest::newRow("mixed, 612") << qint64(612) << rowsOf(kGdpRows) << QStringList { "bar", "bar", "bar", "line" };
    QTest::newRow("plain pie, 3112") << qint64(3112) << rowsOf(kRatingRows) << QStringList { "pie", "pie" };
}

void tst_TFMultiCharts::drawsEachMode()
{
    QFETCH(qint64, viewId);
    QFETCH(QJsonArray, rows);
    QFETCH(QStringList, types);

    auto chart = makeChart(viewId, rows, true);
    QVERIFY(chart);
    // The view counts as settling until the page has drawn what it was sent.
    QTRY_COMPARE_WITH_TIMEOUT(evaluate(chart.get(), "drawCount").toInt(), 1, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(chart->property("settling").toBool(), false, 10000);
    const QStringList drawn = evaluate(chart.get(),
        "tfCharts.getOption().series.map(function (s) { return s.type; }).join(',')").toString().split(',');
    QCOMPARE(drawn, types);
}

void tst_TFMultiCharts::dataBeforeThePageIsDrawnOnce()
{
    auto chart = makeChart(612, rowsOf(kGdpRows), false);
    QVERIFY(!chart->isPageReady());
    QVERIFY(chart->property("settling").toBool());
    QTRY_VERIFY_WITH_TIMEOUT(chart->isPageReady(), 30000);
    QTRY_COMPARE_WITH_TIMEOUT(evaluate(chart.get(), "drawCount").toInt(), 1, 10000);
    QTest::qWait(300);
    QCOMPARE(evaluate(chart.get(), "drawCount").toInt(), 1);
    QCOMPARE(evaluate(chart.get(), "option.series.length").toInt(), 4);

    // Later data is drawn as it arrives.
    chart->handleResponse(QJsonObject { { "Data", rowsOf(kGdpRows) } }, QString(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(evaluate(chart.get(), "drawCount").toInt(), 2, 10000);
}

void tst_TFMultiCharts::skinReachesThePage()
{
    auto chart = makeChart(612, rowsOf(kGdpRows), true);
    QVERIFY(chart);
    chart->slotChangeSkin("black");
    QTRY_COMPARE_WITH_TIMEOUT(evaluate(chart.get(), "option.backgroundColor").toString(), QStringLiteral("#080B10"), 10000);
    QCOMPARE(evaluate(chart.get(), "document.getElementById('menu').className").toString(), QStringLiteral("menu_black"));
    QCOMPARE(chart->webView()->page()->backgroundColor(), QColor("#080B10"));
    chart->slotChangeSkin("Default");
    QTRY_COMPARE_WITH_TIMEOUT(evaluate(chart.get(), "option.backgroundColor").toString(), QStringLiteral("#FFFFFF"), 10000);
    QCOMPARE(evaluate(chart.get(), "document.getElementById('menu').className").toString(), QStringLiteral("menu_white"));

    // After a pie with titles the page stops before the menu: the chart
    // takes the dark colours, the menu stays light.
    chart->parseConfig(document(3112), true);
    chart->handleResponse(QJsonObject { { "Data", rowsOf(kRatingRows) } }, QString(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(evaluate(chart.get(), "option.title.length").toInt(), 2, 10000);
    chart->slotChangeSkin("black");
    QTRY_COMPARE_WITH_TIMEOUT(evaluate(chart.get(), "option.backgroundColor").toString(), QStringLiteral("#080B10"), 10000);
    QCOMPARE(evaluate(chart.get(), "document.getElementById('menu').className").toString(), QStringLiteral("menu_white"));
}

void tst_TFMultiCharts::foreignNavigationIsRefused()
{
    auto chart = makeChart(612, rowsOf(kGdpRows), true);
    QVERIFY(chart);
    UrlCatcher catcher;
    QDesktopServices::setUrlHandler("http", &catcher, "open");
    evaluate(chart.get(), "window.location.href = 'http://127.0.0.1:9/elsewhere'; 1");
    QTRY_COMPARE_WITH_TIMEOUT(catcher.urls.size(), 1, 10000);
    QDesktopServices::unsetUrlHandler("http");
    QCOMPARE(catcher.urls.first(), QUrl("http://127.0.0.1:9/elsewhere"));
    QTest::qWait(200);
    QCOMPARE(chart->webView()->page()->url(), QUrl("qrc:/chart/web/html/index.html"));
    QCOMPARE(evaluate(chart.get(), "drawCount").toInt(), 1);   // the page was not loaded anew
}

void tst_TFMultiCharts::saveWritesAPicture()
{
    auto chart = makeChart(612, rowsOf(kGdpRows), true);
    QVERIFY(chart);
    QTRY_COMPARE_WITH_TIMEOUT(chart->property("settling").toBool(), false, 10000);
    QTest::qWait(500);   // the compositor shows the frame the page drew
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString file = chart->slotSaveImage(dir.filePath("gdp"));
    QVERIFY(file.startsWith(dir.filePath("gdp_")));
    QVERIFY(file.endsWith(".png"));
    const QImage image(file);
    QVERIFY(!image.isNull());
    QCOMPARE(image.size(), chart->size() * chart->devicePixelRatioF());
    // A drawn chart has bars, lines and texts of several colours.
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 3)
        for (int x = 0; x < image.width(); x += 3)
            colours.insert(image.pixel(x, y));
    QVERIFY2(colours.size() > 8, qPrintable(QString::number(colours.size())));
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_TFMultiCharts)

#include "tst_tfmulticharts.moc"
