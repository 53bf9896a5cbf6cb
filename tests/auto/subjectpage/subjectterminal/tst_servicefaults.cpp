#include "httptestserver.h"

#include "pluginloader.h"
#include "screenshotter.h"
#include "terminalwindow.h"

#include "tfcore/tfcore.h"
#include "tfcore/tfserviceconfig.h"

#include <QApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include "webenginetestmain.h"

#include <memory>

namespace {

// Which requests of the page a fault hits.
enum Target { Navigation = 1, Configuration = 2, Rows = 4 };

const char PageUrl[] = "view://subjectpage?pnodecode=2&nodecode=101&objvwid=3001&title=faults";

QJsonObject viewDocument()
{
    QFile file(QStringLiteral(SUBJECT_TEST_DATA_DIR "/pipeline/bands_view.json"));
    return file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll()).object() : QJsonObject();
}

// Two bands that name each other as owner, and a column under one of them.
QJsonObject bandRingDocument()
{
    QJsonObject document = viewDocument();
    QJsonArray config = document.value("View_Config").toArray();
    for (int i = 0; i < config.size(); ++i) {
        QJsonObject row = config.at(i).toObject();
        if (row.value("prop_name").toString() == "Bands")
            row.insert("ext_prop_val", QStringLiteral(
                R"([{"FieldName":"B_A","Caption":"甲","ColumnType":"Band","OwnerBand":"B_B","Visible":true,"Level":1},)"
                R"({"FieldName":"B_B","Caption":"乙","ColumnType":"Band","OwnerBand":"B_A","Visible":true,"Level":2},)"
                R"({"FieldName":"SECU_CODE","Caption":"代码","OwnerBand":"B_A","Visible":true,"Width":90}])"));
        config.replace(i, row);
    }
    document.insert("View_Config", config);
    return document;
}

// The main table's time label, or the frame's loading image: a label with
// that name somewhere below an object of that class, or a label with a movie
// right below it.
QLabel *labelBelow(QWidget *window, const char *className, const QString &name)
{
    for (QLabel *label : window->findChildren<QLabel *>(name)) {
        for (QObject *up = label->parent(); up && (!name.isEmpty() || label->movie());
             up = name.isEmpty() ? nullptr : up->parent()) {
            if (qstrcmp(up->metaObject()->className(), className) == 0)
                return label;
        }
    }
    return nullptr;
}

} // namespace

Q_DECLARE_METATYPE(CannedReply)

// The terminal against a service that answers one kind of request with a
// fault: the page settles and shows the state it should; for one fault of
// the navigation and one of the view, the terminal run as a program also
// exits 0 with its picture.
class tst_ServiceFaults : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void fault_data();
    void fault();

private:
    HttpTestServer m_server;
    QMutex m_mutex;
    int m_target = 0;
    CannedReply m_fault;
    QByteArray m_navigation;
    QByteArray m_view;
    std::unique_ptr<PluginLoader> m_plugins;
    QTemporaryDir m_dir;
};

void tst_ServiceFaults::initTestCase()
{
    QVERIFY(m_dir.isValid());
    m_navigation = HttpTestServer::envelope(QJsonArray{
        QJsonObject{{"NODE_CODE", 100}, {"P_NODE_CODE", 2}, {"NODE_CAP", "行情"}, {"LEVEL", 1}, {"OBJ_VW_ID", 0}},
        QJsonObject{{"NODE_CODE", 101}, {"P_NODE_CODE", 100}, {"NODE_CAP", "故障视图"}, {"LEVEL", 2},
                    {"OBJ_VW_ID", 3001}}});
    m_view = HttpTestServer::envelope(viewDocument());
    QVERIFY(m_view.contains("View_Config"));
    m_server.setHandler([this](const RecordedRequest &request) {
        const QJsonObject body = QJsonDocument::fromJson(request.body).object();
        const int flag = body.value(QStringLiteral("flag")).toInt(-1);
        const int target = body.value(QStringLiteral("objId")).toInt() == 38 ? Navigation
                           : flag == 0                                       ? Configuration
                           : flag > 0                                        ? Rows
                                                                             : 0;
        CannedReply reply;
        reply.body = target == Navigation ? m_navigation : target ? m_view : HttpTestServer::envelope(QJsonArray());
        QMutexLocker locker(&m_mutex);
        return (target & m_target) ? m_fault : reply;
    });
    QVERIFY(m_server.start());

    const QString bin = QStringLiteral(SUBJECT_BIN_DIR);
    TFCore::instance()->setSkinsRoot(bin + QStringLiteral("/skins"));
    TFCore::instance()->setIniDirectory(bin + QStringLiteral("/ini"));
    QVERIFY(TFCore::instance()->setCurrentSkin(QStringLiteral("white")));
    TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), m_server.baseUrl());
    m_plugins = std::make_unique<PluginLoader>(bin + QStringLiteral("/plugins"));
    QVERIFY2(m_plugins->loadAll(), qPrintable(m_plugins->errorString()));
}

void tst_ServiceFaults::cleanupTestCase()
{
    m_plugins.reset();
}

void tst_ServiceFaults::fault_data()
{
    QTest::addColumn<int>("target");
    QTest::addColumn<CannedReply>("reply");
    // What the page shows: the loading image stays, or the main table's time
    // label begins with this text.
    QTest::addColumn<bool>("spinnerStays");
    QTest::addColumn<QString>("timeText");
    QTest::addColumn<bool>("asProgram");

    // One row per kind of fault; the navigation and the rows fail along
    // different roads (a network error, a body that does not parse, a body
    // of the wrong shape).
    const QString noData = QStringLiteral("无数据!");
    const QString elapsed = QStringLiteral("耗时 ");
    const CannedReply html{200, "OK", {{"Content-Type", "text/html"}},
                           "<html><head><title>502 Bad Gateway</title></head><body><h1>Bad Gateway</h1></body></html>"};
    // Rows where an array belongs, an object where rows belong.
    const CannedReply noTree{200, "OK", {}, HttpTestServer::envelope(QJsonObject{{"NODE_CODE", 101}, {"P_NODE_CODE", 2}})};
    const CannedReply oddRows{200, "OK", {}, HttpTestServer::envelope(QJsonArray{QJsonObject{{"SECU_ID", "x"}}, 5})};
    const CannedReply oddFields{200, "OK", {},
                                HttpTestServer::envelope(QJsonObject{{"Data", "no rows"}, {"View_Config", 5}, {"rcount", "many"}})};
    QTest::newRow("navigation: HTTP 500") << int(Navigation) << CannedReply{500, "Internal Server Error", {}, m_navigation}
                                          << true << QString() << true;
    QTest::newRow("navigation: cut in half") << int(Navigation)
                                             << CannedReply{200, "OK", {}, m_navigation, false, false, m_navigation.size() / 2}
                                             << true << QString() << false;
    QTest::newRow("navigation: wrong types") << int(Navigation) << noTree << true << QString() << false;
    QTest::newRow("rows: connection closed") << int(Rows) << CannedReply{200, "OK", {}, m_view, false, true}
                                             << false << noData << false;
    QTest::newRow("rows: HTML") << int(Rows) << html << false << noData << false;
    QTest::newRow("rows: wrong types") << int(Rows) << oddRows << false << noData << false;
    // Fields of the wrong types leave the tables empty: an empty grid, and
    // the time it took.
    QTest::newRow("rows: fields of wrong types") << int(Rows) << oddFields << false << elapsed << false;
    QTest::newRow("bands naming each other as owners")
        << int(Configuration | Rows) << CannedReply{200, "OK", {}, HttpTestServer::envelope(bandRingDocument())}
        << false << elapsed << true;
}

void tst_ServiceFaults::fault()
{
    QFETCH(int, target);
    QFETCH(CannedReply, reply);
    QFETCH(bool, spinnerStays);
    QFETCH(QString, timeText);
    QFETCH(bool, asProgram);
    {
        QMutexLocker locker(&m_mutex);
        m_fault = reply;
        m_target = target;
    }

    // In this process, with the terminal's own window and settle watch.
    const int before = m_server.requestCount();
    auto window = std::make_unique<TerminalWindow>(m_plugins.get());
    window->resize(1000, 700);
    QString error;
    QVERIFY2(window->openPage(QUrl(QString::fromUtf8(PageUrl)), &error), qPrintable(error));
    window->show();
    Screenshotter settle(window.get(), m_dir.filePath(QStringLiteral("in-process.png")), 300, 60000);
    QSignalSpy finished(&settle, &Screenshotter::finished);
    settle.start();
    QVERIFY(finished.wait(90000));
    QCOMPARE(finished.first().at(0).toInt(), 0);
    QVERIFY(m_server.requestCount() > before);

    QLabel *spinner = labelBelow(window.get(), "TFSubjectMainFrame", QString());
    QVERIFY(spinner);
    QCOMPARE(spinner->isVisible(), spinnerStays);
    QLabel *time = labelBelow(window.get(), "TFMainView", QStringLiteral("TimeSpendLabel"));
    if (spinnerStays) {
        QVERIFY(!time || !time->isVisible());
    } else {
        QVERIFY(time);
        QVERIFY2(time->text().startsWith(timeText), qPrintable(time->text()));
    }
    window.reset();
    if (!asProgram)
        return;

    // The terminal as a program: it settles and exits 0.
    const QString picture = m_dir.filePath(QStringLiteral("terminal.png"));
    QFile::remove(picture);
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(SUBJECT_BIN_DIR "/subject-terminal"),
                  {QStringLiteral("--service"), m_server.baseUrl().toString(), QStringLiteral("--size"),
                   QStringLiteral("900x600"), QStringLiteral("--settle-ms"), QStringLiteral("300"),
                   QStringLiteral("--screenshot"), picture, QString::fromUtf8(PageUrl)});
    const bool ended = process.waitForFinished(120000);
    QVERIFY2(ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
             process.readAll().right(3000).constData());
    QVERIFY(QFile::exists(picture));
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_ServiceFaults)

#include "tst_servicefaults.moc"
