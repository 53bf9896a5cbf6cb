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

enum class Fault { None, Html, Status500, Closed, CutInHalf, WrongTypes, WrongFieldTypes, BandRing };
enum class Target { None, Navigation, Rows, Configuration };

const char PageUrl[] = "view://subjectpage?pnodecode=2&nodecode=101&objvwid=3001&title=faults";

int intIn(const QJsonValue &value, const QString &key)
{
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        if (object.contains(key))
            return object.value(key).toVariant().toInt();
        for (const QJsonValue &child : object) {
            const int found = intIn(child, key);
            if (found >= 0)
                return found;
        }
    } else if (value.isArray()) {
        for (const QJsonValue &child : value.toArray()) {
            const int found = intIn(child, key);
            if (found >= 0)
                return found;
        }
    }
    return -1;
}

QJsonObject viewDocument()
{
    QFile file(QStringLiteral(SUBJECT_TEST_DATA_DIR "/pipeline/bands_view.json"));
    if (!file.open(QIODevice::ReadOnly))
        return QJsonObject();
    return QJsonDocument::fromJson(file.readAll()).object();
}

// Two bands that name each other as owner, and a column under one of them.
QJsonObject bandRingDocument()
{
    QJsonObject document = viewDocument();
    QJsonArray config = document.value(QStringLiteral("View_Config")).toArray();
    for (int i = 0; i < config.size(); ++i) {
        QJsonObject row = config.at(i).toObject();
        if (row.value(QStringLiteral("prop_name")).toString() != QLatin1String("Bands"))
            continue;
        row.insert(QStringLiteral("ext_prop_val"),
                   QStringLiteral(R"([{"FieldName":"B_A","Caption":"甲","ColumnType":"Band","OwnerBand":"B_B","Visible":true,"Level":1},)"
                                  R"({"FieldName":"B_B","Caption":"乙","ColumnType":"Band","OwnerBand":"B_A","Visible":true,"Level":2},)"
                                  R"({"FieldName":"SECU_CODE","Caption":"代码","OwnerBand":"B_A","Visible":true,"Width":90}])"));
        config.replace(i, row);
    }
    document.insert(QStringLiteral("View_Config"), config);
    return document;
}

CannedReply faulty(Fault fault, Target target, const QByteArray &good)
{
    CannedReply reply;
    reply.body = good;
    switch (fault) {
    case Fault::Html:
        reply.headers = {{"Content-Type", "text/html"}};
        reply.body = "<html><head><title>502 Bad Gateway</title></head><body><h1>Bad Gateway</h1></body></html>";
        break;
    case Fault::Status500:
        reply.status = 500;
        reply.reason = "Internal Server Error";
        break;
    case Fault::Closed:
        reply.close = true;
        break;
    case Fault::CutInHalf:
        reply.cutAfter = good.size() / 2;
        break;
    case Fault::WrongTypes:
        // Rows where an array belongs, an object where rows belong.
        reply.body = target == Target::Navigation
                ? HttpTestServer::envelope(QJsonObject{{"NODE_CODE", 101}, {"P_NODE_CODE", 2}})
                : HttpTestServer::envelope(QJsonArray{QJsonObject{{"SECU_ID", "x"}}, 5});
        break;
    case Fault::WrongFieldTypes:
        reply.body = HttpTestServer::envelope(QJsonObject{{"Data", "no rows"}, {"View_Config", 5}, {"rcount", "many"}});
        break;
    case Fault::BandRing:
        reply.body = HttpTestServer::envelope(bandRingDocument());
        break;
    case Fault::None:
        break;
    }
    return reply;
}

// The main table's time label, and the frame's loading image.
QLabel *mainTimeLabel(QWidget *window)
{
    const QList<QLabel *> labels = window->findChildren<QLabel *>(QStringLiteral("TimeSpendLabel"));
    for (QLabel *label : labels) {
        for (QObject *up = label->parent(); up; up = up->parent()) {
            if (qstrcmp(up->metaObject()->className(), "TFMainView") == 0)
                return label;
        }
    }
    return nullptr;
}

QLabel *loadingImage(QWidget *window)
{
    const QList<QLabel *> labels = window->findChildren<QLabel *>();
    for (QLabel *label : labels) {
        if (label->movie() && label->parent()
            && qstrcmp(label->parent()->metaObject()->className(), "TFSubjectMainFrame") == 0)
            return label;
    }
    return nullptr;
}

} // namespace

Q_DECLARE_METATYPE(Fault)
Q_DECLARE_METATYPE(Target)

// The terminal against a service that answers one kind of request with a
// fault: the page settles, shows the state it should, and the terminal
// itself, run as a program, exits 0 with its picture.
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
    Fault m_fault = Fault::None;
    Target m_target = Target::None;
    std::unique_ptr<PluginLoader> m_plugins;
    QTemporaryDir m_dir;
};

void tst_ServiceFaults::initTestCase()
{
    QVERIFY(m_dir.isValid());
    const QByteArray navigation = HttpTestServer::envelope(QJsonArray{
        QJsonObject{{"NODE_CODE", 100}, {"P_NODE_CODE", 2}, {"NODE_CAP", "行情"}, {"LEVEL", 1}, {"OBJ_VW_ID", 0}},
        QJsonObject{{"NODE_CODE", 101}, {"P_NODE_CODE", 100}, {"NODE_CAP", "故障视图"}, {"LEVEL", 2},
                    {"OBJ_VW_ID", 3001}}});
    const QByteArray view = HttpTestServer::envelope(viewDocument());
    QVERIFY(view.contains("View_Config"));
    m_server.setHandler([this, navigation, view](const RecordedRequest &request) {
        const QJsonObject body = QJsonDocument::fromJson(request.body).object();
        const int objId = body.value(QStringLiteral("objId")).toInt(-1);
        const int flag = intIn(body, QStringLiteral("flag"));
        Target target = Target::None;
        QByteArray good = HttpTestServer::envelope(QJsonArray());
        if (objId == 38) {
            target = Target::Navigation;
            good = navigation;
        } else if (objId < 0 && flag == 0) {
            target = Target::Configuration;
            good = view;
        } else if (objId < 0 && flag > 0) {
            target = Target::Rows;
            good = view;
        }
        QMutexLocker locker(&m_mutex);
        if (target != Target::None && (target == m_target || (m_fault == Fault::BandRing && target != Target::Navigation)))
            return faulty(m_fault, target, good);
        CannedReply reply;
        reply.body = good;
        return reply;
    });
    QVERIFY(m_server.start());

    const QString bin = QStringLiteral(SUBJECT_BIN_DIR);
    TFCore *core = TFCore::instance();
    core->setSkinsRoot(bin + QStringLiteral("/skins"));
    core->setIniDirectory(bin + QStringLiteral("/ini"));
    QVERIFY(core->setCurrentSkin(QStringLiteral("white")));
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
    QTest::addColumn<Fault>("fault");
    QTest::addColumn<Target>("target");
    // What the page shows: the loading image stays, or the main table's time
    // label begins with this text.
    QTest::addColumn<bool>("spinnerStays");
    QTest::addColumn<QString>("timeText");

    const QString noData = QStringLiteral("无数据!");
    const QString elapsed = QStringLiteral("耗时 ");
    QTest::newRow("navigation: HTML") << Fault::Html << Target::Navigation << true << QString();
    QTest::newRow("navigation: HTTP 500") << Fault::Status500 << Target::Navigation << true << QString();
    QTest::newRow("navigation: connection closed") << Fault::Closed << Target::Navigation << true << QString();
    QTest::newRow("navigation: cut in half") << Fault::CutInHalf << Target::Navigation << true << QString();
    QTest::newRow("navigation: wrong types") << Fault::WrongTypes << Target::Navigation << true << QString();
    QTest::newRow("rows: HTML") << Fault::Html << Target::Rows << false << noData;
    QTest::newRow("rows: HTTP 500") << Fault::Status500 << Target::Rows << false << noData;
    QTest::newRow("rows: connection closed") << Fault::Closed << Target::Rows << false << noData;
    QTest::newRow("rows: cut in half") << Fault::CutInHalf << Target::Rows << false << noData;
    QTest::newRow("rows: wrong types") << Fault::WrongTypes << Target::Rows << false << noData;
    // Fields of the wrong types leave the tables empty: an empty grid, and
    // the time it took.
    QTest::newRow("rows: fields of wrong types") << Fault::WrongFieldTypes << Target::Rows << false << elapsed;
    QTest::newRow("bands naming each other as owners") << Fault::BandRing << Target::None << false << elapsed;
}

void tst_ServiceFaults::fault()
{
    QFETCH(Fault, fault);
    QFETCH(Target, target);
    QFETCH(bool, spinnerStays);
    QFETCH(QString, timeText);
    {
        QMutexLocker locker(&m_mutex);
        m_fault = fault;
        m_target = target;
    }

    // In this process, with the terminal's own window and settle watch.
    const int before = m_server.requestCount();
    auto window = std::make_unique<TerminalWindow>(m_plugins.get());
    window->resize(1000, 700);
    QString error;
    QVERIFY2(window->openPage(QUrl(QString::fromUtf8(PageUrl)), &error), qPrintable(error));
    window->show();
    Screenshotter settle(window.get(), m_dir.filePath(QStringLiteral("in-process.png")), 500, 60000);
    QSignalSpy finished(&settle, &Screenshotter::finished);
    settle.start();
    QVERIFY(finished.wait(90000));
    QCOMPARE(finished.first().at(0).toInt(), 0);
    QVERIFY(m_server.requestCount() > before);

    QLabel *spinner = loadingImage(window.get());
    QVERIFY(spinner);
    QCOMPARE(spinner->isVisible(), spinnerStays);
    QLabel *time = mainTimeLabel(window.get());
    if (spinnerStays) {
        QVERIFY(!time || !time->isVisible());
    } else {
        QVERIFY(time);
        QVERIFY2(time->text().startsWith(timeText), qPrintable(time->text()));
    }
    window.reset();

    // The terminal as a program: it settles and exits 0.
    const QString picture = m_dir.filePath(QStringLiteral("terminal.png"));
    QFile::remove(picture);
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral(SUBJECT_BIN_DIR "/subject-terminal"),
                  {QStringLiteral("--service"), m_server.baseUrl().toString(), QStringLiteral("--size"),
                   QStringLiteral("900x600"), QStringLiteral("--settle-ms"), QStringLiteral("500"),
                   QStringLiteral("--screenshot"), picture, QString::fromUtf8(PageUrl)});
    QVERIFY(process.waitForStarted(30000));
    const bool ended = process.waitForFinished(120000);
    const QByteArray output = process.readAll();
    if (!ended)
        process.kill();
    QVERIFY2(ended && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
             output.right(3000).constData());
    QVERIFY(QFile::exists(picture));
}

SUBJECT_WEBENGINE_TEST_MAIN(tst_ServiceFaults)

#include "tst_servicefaults.moc"
