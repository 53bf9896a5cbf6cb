#include "echarts/tfmulticharts.h"

#include "catalogue.h"
#include "configurationdocument.h"
#include "httptestserver.h"
#include "net/tfuc.h"
#include "subjectservice.h"
#include "tfcore/tfserviceconfig.h"

#include <QDesktopServices>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QTemporaryDir>
#include <QWebEngineView>
#include <QtTest>

#include "webenginetestmain.h"

#include <memory>

using namespace SubjectService;

// The chart view with its page in the web engine, fed with the
// configuration that the reference service makes of catalogue views. One
// chart and its page serve every test but the one of early data; the page
// keeps a pie's titles once drawn, so the skin test draws the only pie.
class tst_TFMultiCharts : public QObject
{
    Q_OBJECT

public slots:
    // Stands in for the desktop: records what the page hands to it.
    void open(const QUrl &url) { m_opened.append(url); }

private slots:
    void initTestCase();
    void cleanupTestCase();
    void cleanup();
    void requestsTheWholeSet();
    void badReplyKeepsTheChart_data();
    void badReplyKeepsTheChart();
    void skinReachesThePage();
    void foreignNavigationIsRefused();
    void saveWritesAPicture();
    void dataBeforeThePageIsDrawnOnce();

private:
    // Gives the chart a view's configuration and rows, and waits until the
    // page has drawn what it was sent.
    bool draw(qint64 viewId, const QJsonArray &rows);
    QVariant evaluate(const QString &script, TFMultiCharts *chart = nullptr);
    Catalogue m_catalogue;
    QTemporaryDir m_dir;
    std::unique_ptr<Server> m_server;
    std::unique_ptr<TFMultiCharts> m_chart;
    QList<QUrl> m_opened;
};

static const char kService[] = "servercfg.ini:Subject";

static QJsonArray rowsOf(const char *json)
{
    return QJsonDocument::fromJson(QByteArray(json)).array();
}

static const QJsonArray kGdpRows = rowsOf(
    R"j([{"PERIOD_NAME":"2024Q1","PRIMARY_IND":11538,"SECONDARY_IND":61683,"TERTIARY_IND":76617,"GDP_YOY":5.3},
         {"PERIOD_NAME":"2024Q2","PRIMARY_IND":18000,"SECONDARY_IND":70000,"TERTIARY_IND":82222,"GDP_YOY":4.7}])j");
static const QJsonArray kRatingRows = rowsOf(
    R"j([{"RATING":"AAA","BOND_CNT":12,"ISSUE_AMT":3456000000},{"RATING":"AA+","BOND_CNT":30,"ISSUE_AMT":1234560000}])j");

void tst_TFMultiCharts::initTestCase()
{
    QString error;
    QVERIFY2(m_catalogue.load(&error), qPrintable(error));
    QVERIFY(m_dir.isValid());
    Options options;
    options.dbPath = m_dir.filePath("charts.sqlite");
    m_server.reset(new Server(options));
    QVERIFY2(m_server->start(&error), qPrintable(error));
    TFServiceConfig::instance()->setHttpUrl(kService, m_server->baseUrl());
    m_chart.reset(new TFMultiCharts);
    m_chart->resize(800, 500);
    m_chart->show();
    QTRY_VERIFY_WITH_TIMEOUT(m_chart->isPageReady(), 30000);
}

void tst_TFMultiCharts::cleanupTestCase()
{
    m_chart.reset();
    m_server.reset();
}

void tst_TFMultiCharts::cleanup()
{
    TFServiceConfig::instance()->setHttpUrl(kService, m_server->baseUrl());
    TFUc::setBaseUrl(m_server->baseUrl());
    QDesktopServices::unsetUrlHandler("http");
}

QVariant tst_TFMultiCharts::evaluate(const QString &script, TFMultiCharts *chart)
{
    // An answer that comes after the wait gives up must not land on this frame.
    struct Answer { QVariant value; bool done = false; };
    auto answer = std::make_shared<Answer>();
    (chart ? chart : m_chart.get())->webView()->page()->runJavaScript(script, [answer](const QVariant &value) {
        answer->value = value;
        answer->done = true;
    });
    if (!QTest::qWaitFor([answer] { return answer->done; }, 10000))
        return QStringLiteral("no answer from the page");
    return answer->value;
}

bool tst_TFMultiCharts::draw(qint64 viewId, const QJsonArray &rows)
{
    const ViewDefinition *view = m_catalogue.view(viewId);
    if (!view)
        return false;
    m_chart->parseConfig(ConfigurationDocument::document(*view, {}, ConfigurationDocument::summary({})), true);
    m_chart->handleResponse(QJsonObject { { "Data", rows } }, QString(), 1);
    return QTest::qWaitFor([&] { return !m_chart->property("settling").toBool(); }, 10000);
}

// A main chart view asks for its rows itself, all of them in one reply, and
// counts as settling until they are drawn.
void tst_TFMultiCharts::requestsTheWholeSet()
{
    QVERIFY(draw(611, {}));
    const int before = evaluate("drawCount").toInt();
    m_chart->setViewId(611);
    m_chart->requestData();
    QVERIFY(m_chart->property("settling").toBool());
    // 120 months, of which the chart shows the last 48, oldest first.
    QTRY_COMPARE_WITH_TIMEOUT(m_chart->property("settling").toBool(), false, 30000);
    const QStringList labels = m_chart->dataSource()->labels();
    QCOMPARE(labels.size(), 48);
    QCOMPARE(labels.first(), QStringLiteral("2021-01"));
    QCOMPARE(labels.last(), QStringLiteral("2024-12"));
    QCOMPARE(evaluate("option.xAxis.data.length").toInt(), 48);
    QCOMPARE(evaluate("drawCount").toInt(), before + 1);
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

    QVERIFY(draw(612, kGdpRows));
    const int before = evaluate("drawCount").toInt();
    HttpTestServer server;
    server.setHandler([body](const RecordedRequest &) {
        CannedReply reply;
        reply.body = body;
        return reply;
    });
    QVERIFY(server.start());
    TFServiceConfig::instance()->setHttpUrl(kService, server.baseUrl());
    TFUc::setBaseUrl(server.baseUrl());
    m_chart->setViewId(612);
    m_chart->requestData();
    QTRY_COMPARE_WITH_TIMEOUT(server.requestCount(), 1, 10000);
    QTRY_COMPARE_WITH_TIMEOUT(m_chart->property("settling").toBool(), false, 10000);
    QCOMPARE(evaluate("drawCount").toInt(), before + draws);
    QCOMPARE(evaluate("option.series[0].data.join(',')").toString(), firstData);
}

// Each mode is drawn with its series' types; the skin reaches the page.
void tst_TFMultiCharts::skinReachesThePage()
{
    const QString types = "tfCharts.getOption().series.map(function (s) { return s.type; }).join(',')";
    QVERIFY(draw(612, kGdpRows));
    QCOMPARE(evaluate(types).toString(), QStringLiteral("bar,bar,bar,line"));
    m_chart->slotChangeSkin("black");
    QTRY_COMPARE_WITH_TIMEOUT(evaluate("option.backgroundColor").toString(), QStringLiteral("#080B10"), 10000);
    QCOMPARE(evaluate("document.getElementById('menu').className").toString(), QStringLiteral("menu_black"));
    QCOMPARE(m_chart->webView()->page()->backgroundColor(), QColor("#080B10"));
    m_chart->slotChangeSkin("Default");
    QTRY_COMPARE_WITH_TIMEOUT(evaluate("option.backgroundColor").toString(), QStringLiteral("#FFFFFF"), 10000);
    QCOMPARE(evaluate("document.getElementById('menu').className").toString(), QStringLiteral("menu_white"));

    // After a pie with titles the page stops before the menu: the chart
    // takes the dark colours, the menu stays light.
    QVERIFY(draw(3112, kRatingRows));
    QCOMPARE(evaluate(types).toString(), QStringLiteral("pie,pie"));
    QCOMPARE(evaluate("option.title.length").toInt(), 2);
    m_chart->slotChangeSkin("black");
    QTRY_COMPARE_WITH_TIMEOUT(evaluate("option.backgroundColor").toString(), QStringLiteral("#080B10"), 10000);
    QCOMPARE(evaluate("document.getElementById('menu').className").toString(), QStringLiteral("menu_white"));
    m_chart->slotChangeSkin("Default");
}

void tst_TFMultiCharts::foreignNavigationIsRefused()
{
    QVERIFY(draw(612, kGdpRows));
    const int before = evaluate("drawCount").toInt();
    QDesktopServices::setUrlHandler("http", this, "open");
    evaluate("window.location.href = 'http://127.0.0.1:9/elsewhere'; 1");
    QTRY_COMPARE_WITH_TIMEOUT(m_opened, QList<QUrl> { QUrl("http://127.0.0.1:9/elsewhere") }, 10000);
    QCOMPARE(m_chart->webView()->page()->url(), QUrl("qrc:/chart/web/html/index.html"));
    QCOMPARE(evaluate("drawCount").toInt(), before);   // the page was not loaded anew
}

void tst_TFMultiCharts::saveWritesAPicture()
{
    QVERIFY(draw(612, kGdpRows));
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    // A drawn chart has bars, lines and texts of several colours, once the
    // compositor shows the frame the page drew.
    QString file;
    const auto colours = [&] {
        file = m_chart->slotSaveImage(dir.filePath("gdp"));
        const QImage image(file);
        QSet<QRgb> seen;
        for (int y = 0; y < image.height(); y += 3)
            for (int x = 0; x < image.width(); x += 3)
                seen.insert(image.pixel(x, y));
        return seen.size();
    };
    QTRY_VERIFY_WITH_TIMEOUT(colours() > 8, 10000);
    QVERIFY2(file.startsWith(dir.filePath("gdp_")) && file.endsWith(".png"), qPrintable(file));
    QCOMPARE(QImage(file).size(), m_chart->size() * m_chart->devicePixelRatioF());
}

// Rows that come before the page are drawn once it is there, once.
void tst_TFMultiCharts::dataBeforeThePageIsDrawnOnce()
{
    TFMultiCharts chart;
    chart.resize(800, 500);
    chart.show();
    chart.parseConfig(ConfigurationDocument::document(*m_catalogue.view(612), {}, ConfigurationDocument::summary({})),
                      true);
    chart.handleResponse(QJsonObject { { "Data", kGdpRows } }, QString(), 1);
    QVERIFY(!chart.isPageReady());
    QVERIFY(chart.property("settling").toBool());
    // Settled means the page drew every message it was sent.
    QTRY_VERIFY_WITH_TIMEOUT(chart.isPageReady() && !chart.property("settling").toBool(), 30000);
    QCOMPARE(evaluate("drawCount", &chart).toInt(), 1);
    QCOMPARE(evaluate("option.series.length", &chart).toInt(), 4);

    // Later data is drawn as it arrives.
    chart.handleResponse(QJsonObject { { "Data", kGdpRows } }, QString(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(evaluate("drawCount", &chart).toInt(), 2, 10000);
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_TFMultiCharts)

#include "tst_tfmulticharts.moc"
