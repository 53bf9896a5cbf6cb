#include "httptestserver.h"
#include "screenshotter.h"
#include "subjectservice.h"

#include <QEventLoop>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QRegularExpression>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <memory>

// The built terminal walked through its command line: two full runs started
// together (a page against the reference service behind a recording relay,
// and a composite screen on the service the terminal embeds), then the quick
// ways out, and the settle rule in-process.
class tst_Terminal : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void fullRun_data();
    void fullRun();
    void identityOnTheWire();
    void quickExit_data();
    void quickExit();
    void settle_data();
    void settle();

private:
    QTemporaryDir m_dir;
    std::unique_ptr<SubjectService::Server> m_service;
    HttpTestServer m_relay;
    QProcess m_page;
    QProcess m_screen;
    QByteArray m_screenDocument;
};

static const QString terminalPath = QStringLiteral(SUBJECT_BIN_DIR "/subject-terminal");

// Passes a request on to the reference service and its answer back.
static CannedReply relay(const QUrl &service, const RecordedRequest &request)
{
    QUrl url = service;
    url.setPath(QString::fromUtf8(request.target));
    QNetworkRequest forward(url);
    for (const QByteArray name : { "Content-Type", "kvt-token", "userId", "prodId" }) {
        if (request.hasHeader(name))
            forward.setRawHeader(name, request.header(name));
    }
    QNetworkAccessManager manager;
    std::unique_ptr<QNetworkReply> reply(manager.sendCustomRequest(forward, request.method, request.body));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    CannedReply answer;
    answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    answer.close = answer.status == 0;
    answer.body = reply->readAll();
    return answer;
}

static void start(QProcess *process, const QStringList &arguments, const QString &cacheHome = QString(),
                  bool display = true)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));   // the web engine needs the X display
    if (!display) {
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    }
    if (!cacheHome.isEmpty())
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), cacheHome);
    process->setProcessEnvironment(environment);
    process->start(terminalPath, arguments);
}

static void finish(QProcess *process, int timeoutMs)
{
    if (!process->waitForFinished(timeoutMs)) {
        process->kill();
        process->waitForFinished(5000);
    }
}

static QByteArray readFile(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

static QString writeFile(const QString &name, const QByteArray &content)
{
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() ? name : QString();
}

void tst_Terminal::initTestCase()
{
    QVERIFY2(QFile::exists(terminalPath), qPrintable(terminalPath));
    QVERIFY(m_dir.isValid());
    SubjectService::Options options;
    options.dbPath = m_dir.filePath("service.sqlite");
    options.token = "tkn-9";
    m_service.reset(new SubjectService::Server(options));
    QString error;
    QVERIFY2(m_service->start(&error), qPrintable(error));
    const QUrl serviceUrl = m_service->baseUrl();
    m_relay.setHandler([serviceUrl](const RecordedRequest &request) { return relay(serviceUrl, request); });
    QVERIFY(m_relay.start());

    // The page named by the plug-in, with an identity of its own.
    start(&m_page, { "--service", m_relay.baseUrl().toString(), "--token", "tkn-9", "--user", "u42", "--product", "p7",
                     "--skin", "black", "--size", "900x600", "--settle-ms", "800", "--verbose",
                     "--log", m_dir.filePath("page.log"), "--screenshot", m_dir.filePath("page.png") });

    // Two components bound to one global argument, and one nobody registered.
    const QByteArray state = R"j({"version": "1.0.0", "titleVisible": true, "filterVisible": true,
        "mainViewVisible": true, "subViewVisible": false, "pageBarVisible": true, "objVwIdBinder": "objVwId"})j";
    m_screenDocument = R"j({"title": "债券", "args": {"objVwId": "债券一览|3110"}, "components": [
        {"class": "TFFrameSubjectZHP", "state": )j" + state + R"j(},
        {"class": "TFFrameSubjectZHP_ZZ", "state": )j" + state + R"j(},
        {"class": "TFNoSuchComponent"}]})j";
    const QString screen = writeFile(m_dir.filePath("desk.json"), m_screenDocument);
    QVERIFY(!screen.isEmpty());
    start(&m_screen, { "--screen", screen, "--size", "1200x800", "--log", m_dir.filePath("screen.log"),
                       "--screenshot", m_dir.filePath("screen.png") }, m_dir.filePath("cache"));

    finish(&m_page, 180000);
    finish(&m_screen, 180000);
}

void tst_Terminal::cleanupTestCase()
{
    if (m_service)
        m_service->stop();
}

// Log lines with the times they must appear; -1: at least once.
using LogCounts = QMap<QString, int>;

void tst_Terminal::fullRun_data()
{
    QTest::addColumn<bool>("page");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("dark");
    QTest::addColumn<bool>("verbose");
    QTest::addColumn<QByteArray>("console");
    QTest::addColumn<LogCounts>("logged");

    QTest::newRow("default page, black, verbose") << true << QSize(900, 600) << true << true << QByteArray()
        << LogCounts{ { "opening page", -1 }, { "refresh right container: 260", -1 },
                      { "get subject config failed", 0 } };
    QTest::newRow("screen, embedded service, white") << false << QSize(1200, 800) << false << false
        << QByteArray("no component \"TFNoSuchComponent\"")
        << LogCounts{ { "TFFrameSubjectZHP::slotsArgsChanged: \"objVwId\" = \"债券一览|3110\"", 2 },
                      { "refresh right container: 3110", -1 }, { "get subject config failed", 0 } };
}

void tst_Terminal::fullRun()
{
    QFETCH(bool, page);
    QFETCH(QSize, size);
    QFETCH(bool, dark);
    QFETCH(bool, verbose);
    QFETCH(QByteArray, console);
    QFETCH(LogCounts, logged);
    QProcess &run = page ? m_page : m_screen;
    const QString picture = m_dir.filePath(page ? "page.png" : "screen.png");
    const QByteArray out = run.readAllStandardOutput();
    const QByteArray err = run.readAllStandardError();
    QVERIFY2(run.exitStatus() == QProcess::NormalExit && run.exitCode() == 0, err.right(4000));
    QCOMPARE(out, "saved " + picture.toUtf8() + '\n');
    QVERIFY2(err.contains(console), err.right(4000));
    // Debug lines reach the console only when asked for; the log has them anyway.
    QCOMPARE(err.contains("[debug]"), verbose);

    const QImage image(picture);
    QCOMPARE(image.size(), size);
    // The skin shows in the middle of the window.
    qint64 sum = 0;
    int samples = 0;
    for (int y = image.height() / 4; y < image.height() * 3 / 4; y += 7) {
        for (int x = image.width() / 4; x < image.width() * 3 / 4; x += 7, ++samples)
            sum += qGray(image.pixel(x, y));
    }
    const int meanGray = int(sum / samples);
    QVERIFY2(dark ? meanGray < 96 : meanGray > 160, qPrintable(QString::number(meanGray)));

    const QString text = QString::fromUtf8(readFile(m_dir.filePath(page ? "page.log" : "screen.log")));
    for (auto it = logged.cbegin(); it != logged.cend(); ++it) {
        const int count = text.count(it.key());
        QVERIFY2(it.value() < 0 ? count > 0 : count == it.value(), qPrintable(it.key() + ": " + QString::number(count)));
    }
    // Every line names its time, level, file, line, function and thread.
    static const QRegularExpression line(QStringLiteral(
        "^\\d{4}-\\d{2}-\\d{2} \\S+ \\[(debug|info|warning|critical)\\] \\S+:\\d+ .+ \\(thread [0-9a-f]+\\): "));
    static const QRegularExpression stamp(QStringLiteral("^\\d{4}-\\d{2}-\\d{2} "));
    int formatted = 0;
    for (const QString &entry : text.split('\n', Qt::SkipEmptyParts)) {
        if (stamp.match(entry).hasMatch()) {   // the rest are later lines of one message
            QVERIFY2(line.match(entry).hasMatch(), qPrintable(entry));
            ++formatted;
        }
    }
    QVERIFY(formatted > 5);

    if (!page) {
        QVERIFY(QFile::exists(m_dir.filePath("cache/subject/subject-terminal/subject-demo.sqlite")));
        QCOMPARE(readFile(m_dir.filePath("desk.json")), m_screenDocument);   // nothing changed, nothing written
    }
}

// What the terminal was told about its user reaches every request.
void tst_Terminal::identityOnTheWire()
{
    const QList<RecordedRequest> requests = m_relay.requests();
    QVERIFY(!requests.isEmpty());
    const QJsonObject identity{ { "userId", "u42" }, { "prodId", "p7" } };
    bool navigation = false;
    for (const RecordedRequest &request : requests) {
        QCOMPARE(request.header("kvt-token"), QByteArray("tkn-9"));
        QCOMPARE(request.header("userId"), QByteArray("u42"));
        QCOMPARE(request.header("prodId"), QByteArray("p7"));
        const QJsonObject body = QJsonDocument::fromJson(request.body).object();
        // List controls ask by name and send no identity in the body.
        QVERIFY2(body.contains("objName") || body.value("auth").toObject() == identity,
                 request.target + ' ' + request.body);
        // The plug-in's default page is the stock topic under node 2.
        navigation = navigation || (body.value("objId").toInt() == 38 && body.value("P_NODE_CODE").toInt() == 2);
    }
    QVERIFY(navigation);
}

void tst_Terminal::quickExit_data()
{
    QTest::addColumn<QString>("setup");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("out");
    QTest::addColumn<QByteArray>("err");

    const QByteArray none;
    QTest::newRow("help among Qt's options") << "no display" << QStringList{ "-style", "fusion", "--help" } << 0
                                             << QByteArray("--screenshot <FILE.png>") << none;
    QTest::newRow("version") << "no display" << QStringList{ "--version" } << 0
                             << QByteArray("subject-terminal 1.0.0\n") << none;
    QTest::newRow("unknown option") << "no display" << QStringList{ "--no-such-option" } << 2 << none
                                    << QByteArray("Unknown option 'no-such-option'.\nTry 'subject-terminal --help'.");
    QTest::newRow("a window needs a display") << "no display" << QStringList{ "--skin", "black" } << 2 << none
                                              << QByteArray("xvfb-run");
    QTest::newRow("unwritable log") << "" << QStringList{ "--log", "/nonexistent-dir/x.log" } << 2 << none
                                    << QByteArray("cannot open log file");
    QTest::newRow("no plug-in folder") << "" << QStringList{ "--plugins", "/nonexistent-dir" } << 3 << none
                                       << QByteArray("does not exist");
    QTest::newRow("screen file missing") << "" << QStringList{ "--screen", "/nonexistent-dir/a.json" } << 2 << none
                                         << QByteArray("cannot read screen");
    QTest::newRow("screen of unknown components only") << "unknown screen" << QStringList() << 3 << none
                                                       << QByteArray("no component \"TFNoSuchComponent\"");
}

// Ways out before any page asks the service for anything.
void tst_Terminal::quickExit()
{
    QFETCH(QString, setup);
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, out);
    QFETCH(QByteArray, err);
    QStringList all{ "--service", m_relay.baseUrl().toString() };
    if (setup == "unknown screen")
        all << "--screen" << writeFile(m_dir.filePath("unknown.json"), R"({"components": [{"class": "TFNoSuchComponent"}]})");
    const int requestsBefore = m_relay.requestCount();
    QProcess run;
    start(&run, all + arguments, QString(), setup != "no display");
    finish(&run, 60000);
    const QByteArray stdOut = run.readAllStandardOutput();
    const QByteArray stdErr = run.readAllStandardError();
    QCOMPARE(run.exitStatus(), QProcess::NormalExit);
    QVERIFY2(run.exitCode() == exitCode, stdErr.constData());
    QVERIFY2(stdOut.contains(out), stdOut.constData());
    QVERIFY2(stdErr.contains(err), stdErr.constData());
    QCOMPARE(m_relay.requestCount(), requestsBefore);
}

void tst_Terminal::settle_data()
{
    QTest::addColumn<QString>("setup");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    QTest::newRow("quiet") << "" << 0 << "saved ";
    QTest::newRow("a widget settling") << "settling" << 4 << "the page did not settle within 1 s; no picture taken";
    QTest::newRow("a hidden widget settling") << "hidden settling" << 0 << "saved ";
    QTest::newRow("a request in flight") << "pool busy" << 4 << "did not settle";
    QTest::newRow("picture not writable") << "unwritable" << 1 << "cannot write the picture to \"/nonexistent-dir/";
}

// A picture is taken only once nothing is in flight and no visible widget
// is still drawing, for the whole quiet time.
void tst_Terminal::settle()
{
    QFETCH(QString, setup);
    QFETCH(int, exitCode);
    QFETCH(QString, message);
    QWidget window;
    window.resize(200, 100);
    QWidget child(&window);
    child.setProperty("settling", setup.endsWith("settling"));
    child.setVisible(setup != "hidden settling");
    window.show();
    QSemaphore release;
    if (setup == "pool busy")
        QThreadPool::globalInstance()->start([&release] { release.acquire(); });
    const QString file = setup == "unwritable" ? "/nonexistent-dir/x.png" : m_dir.filePath("settle.png");
    QFile::remove(file);
    // A short limit where it is to run out; a long one where a busy machine
    // must not make it run out.
    Screenshotter shooter(&window, file, 300, exitCode == 4 ? 1000 : 20000);
    QSignalSpy finished(&shooter, &Screenshotter::finished);
    shooter.start();
    const bool done = finished.wait(30000);
    release.release();
    QThreadPool::globalInstance()->waitForDone();
    QVERIFY(done);
    QCOMPARE(finished.at(0).at(0).toInt(), exitCode);
    QVERIFY2(finished.at(0).at(1).toString().contains(message), qPrintable(finished.at(0).at(1).toString()));
    QCOMPARE(QImage(file).size(), exitCode == 0 ? QSize(200, 100) : QSize(0, 0));
}

QTEST_MAIN(tst_Terminal)
#include "tst_terminal.moc"
