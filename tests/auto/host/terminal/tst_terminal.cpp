#include <QDir>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

// A data service of the smallest kind: every POST gets the same envelope
// with no rows, or, when holding, no answer at all.
class EnvelopeServer : public QObject
{
    Q_OBJECT
public:
    struct Request
    {
        QByteArray method;
        QByteArray path;
        QMap<QByteArray, QByteArray> headers;   // names in lower case
        QByteArray body;
    };

    explicit EnvelopeServer(bool hold = false)
        : m_hold(hold)
    {
        connect(&m_server, &QTcpServer::newConnection, this, &EnvelopeServer::accept);
    }

    bool listen() { return m_server.listen(QHostAddress::LocalHost, 0); }
    QString baseUrl() const { return QStringLiteral("http://127.0.0.1:%1").arg(m_server.serverPort()); }
    QVector<Request> requests;

private:
    void accept()
    {
        while (QTcpSocket *socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    }

    void read(QTcpSocket *socket)
    {
        QByteArray &buffer = m_buffers[socket];
        buffer += socket->readAll();
        for (;;) {
            const int headerEnd = buffer.indexOf("\r\n\r\n");
            if (headerEnd < 0)
                return;
            Request request;
            const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
            const QList<QByteArray> first = lines.value(0).trimmed().split(' ');
            request.method = first.value(0);
            request.path = first.value(1);
            for (int i = 1; i < lines.size(); ++i) {
                const int colon = lines.at(i).indexOf(':');
                if (colon > 0)
                    request.headers.insert(lines.at(i).left(colon).trimmed().toLower(), lines.at(i).mid(colon + 1).trimmed());
            }
            const int length = request.headers.value("content-length").toInt();
            if (buffer.size() < headerEnd + 4 + length)
                return;
            request.body = buffer.mid(headerEnd + 4, length);
            buffer.remove(0, headerEnd + 4 + length);
            requests.append(request);
            if (m_hold)
                continue;
            const QByteArray envelope = R"({"state":0,"msg":"","extend":null,"data":[]})";
            socket->write("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: "
                          + QByteArray::number(envelope.size()) + "\r\nConnection: keep-alive\r\n\r\n" + envelope);
        }
    }

    QTcpServer m_server;
    QHash<QTcpSocket *, QByteArray> m_buffers;
    bool m_hold;
};

// Whether key holds number anywhere in the object, at any depth.
static bool containsValue(const QJsonValue &value, const QString &key, double number)
{
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        for (auto it = object.begin(); it != object.end(); ++it) {
            if (it.key() == key && it.value().toDouble() == number)
                return true;
            if (containsValue(it.value(), key, number))
                return true;
        }
    } else if (value.isArray()) {
        const QJsonArray array = value.toArray();
        for (const QJsonValue &item : array) {
            if (containsValue(item, key, number))
                return true;
        }
    }
    return false;
}

class tst_Terminal : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void withoutDisplay_data();
    void withoutDisplay();
    void screenshotOfASettledPage_data();
    void screenshotOfASettledPage();
    void failures_data();
    void failures();
    void unsettledPageExitsWithFour();
    void embeddedServiceWithoutServiceOption();

private:
    struct Run
    {
        int exitCode = -1;
        QByteArray out;
        QByteArray err;
    };
    Run run(const QStringList &arguments, int timeoutMs, const QString &cacheHome = QString(),
            bool withDisplay = true);

    QString m_terminal;
    QTemporaryDir m_dir;
};

tst_Terminal::Run tst_Terminal::run(const QStringList &arguments, int timeoutMs, const QString &cacheHome,
                                    bool withDisplay)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));   // the web engine needs the X display
    if (!withDisplay) {
        environment.remove(QStringLiteral("DISPLAY"));
        environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    }
    if (!cacheHome.isEmpty())
        environment.insert(QStringLiteral("XDG_CACHE_HOME"), cacheHome);
    process.setProcessEnvironment(environment);
    process.start(m_terminal, arguments);
    Run result;
    if (!process.waitForStarted(10000))
        return result;
    // The service answers from this thread's event loop, so wait by spinning it.
    QElapsedTimer clock;
    clock.start();
    while (process.state() != QProcess::NotRunning && clock.elapsed() < timeoutMs)
        QTest::qWait(50);
    if (process.state() != QProcess::NotRunning) {
        process.kill();
        process.waitForFinished(5000);
        result.err = "killed after " + QByteArray::number(timeoutMs) + " ms\n";
    }
    result.out = process.readAllStandardOutput();
    result.err += process.readAllStandardError();
    if (process.exitStatus() == QProcess::NormalExit)
        result.exitCode = process.exitCode();
    return result;
}

void tst_Terminal::initTestCase()
{
    m_terminal = QStringLiteral(SUBJECT_BIN_DIR "/subject-terminal");
    QVERIFY2(QFile::exists(m_terminal), qPrintable(m_terminal));
    QVERIFY(m_dir.isValid());
}

// A new user on a machine without a display: help, version and bad
// arguments work, and the window asks for one.
void tst_Terminal::withoutDisplay_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QByteArray>("out");
    QTest::addColumn<QByteArray>("err");
    QTest::newRow("help") << QStringList{"--help"} << 0 << QByteArray("--screenshot <FILE.png>") << QByteArray();
    QTest::newRow("help among Qt's options") << QStringList{"-style", "fusion", "--help"} << 0
                                             << QByteArray("--verbose") << QByteArray();
    QTest::newRow("version") << QStringList{"--version"} << 0 << QByteArray("subject-terminal 1.0.0\n")
                             << QByteArray();
    QTest::newRow("unknown option") << QStringList{"--no-such-option"} << 2 << QByteArray()
                                    << QByteArray("Unknown option 'no-such-option'");
    QTest::newRow("bad value") << QStringList{"--size", "9x9"} << 2 << QByteArray() << QByteArray("--size");
    QTest::newRow("a window needs a display") << QStringList{"--skin", "black"} << 2 << QByteArray()
                                              << QByteArray("xvfb-run");
}

void tst_Terminal::withoutDisplay()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QByteArray, out);
    QFETCH(QByteArray, err);
    const Run result = run(arguments, 30000, QString(), false);
    QCOMPARE(result.exitCode, exitCode);
    QVERIFY2(result.out.contains(out), result.out.constData());
    QVERIFY2(result.err.contains(err), result.err.constData());
}

void tst_Terminal::screenshotOfASettledPage_data()
{
    QTest::addColumn<QString>("skin");
    QTest::addColumn<bool>("verbose");
    QTest::newRow("white") << "white" << false;
    QTest::newRow("black, verbose") << "black" << true;
}

// The real plug-in, the terminal's identity passed on to every request, and
// a picture once nothing is in flight.
void tst_Terminal::screenshotOfASettledPage()
{
    QFETCH(QString, skin);
    QFETCH(bool, verbose);
    EnvelopeServer server;
    QVERIFY(server.listen());
    const QString picture = m_dir.filePath("page-" + skin + ".png");
    const QString log = m_dir.filePath("terminal-" + skin + ".log");
    QStringList arguments{"--service", server.baseUrl(), "--token", "tkn-9", "--user", "u42", "--product", "p7",
                          "--skin", skin, "--size", "900x600", "--screenshot", picture, "--settle-ms", "800",
                          "--log", log};
    if (verbose)
        arguments << "--verbose";
    const Run result = run(arguments, 120000);
    QVERIFY2(result.exitCode == 0, result.err.constData());
    QVERIFY2(result.out.contains(picture.toUtf8()), result.out.constData());
    // Debug lines reach the console only when asked for; the log has them anyway.
    QCOMPARE(result.err.contains("[debug]"), verbose);

    QImage image(picture);
    QVERIFY(!image.isNull());
    QCOMPARE(image.size(), QSize(900, 600));

    // The skin shows: the page area of the black skin is dark, the white one light.
    qint64 sum = 0;
    int samples = 0;
    for (int y = image.height() / 4; y < image.height() * 3 / 4; y += 7) {
        for (int x = image.width() / 4; x < image.width() * 3 / 4; x += 7) {
            sum += qGray(image.pixel(x, y));
            ++samples;
        }
    }
    const int meanGray = int(sum / samples);
    if (skin == "black")
        QVERIFY2(meanGray < 96, qPrintable(QString::number(meanGray)));
    else
        QVERIFY2(meanGray > 160, qPrintable(QString::number(meanGray)));

    // The default page is the stock page: it asks for its navigation rows.
    QVERIFY(!server.requests.isEmpty());
    bool sawNavigationRequest = false;
    for (const EnvelopeServer::Request &request : qAsConst(server.requests)) {
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.headers.value("userid"), QByteArray("u42"));
        QCOMPARE(request.headers.value("prodid"), QByteArray("p7"));
        QCOMPARE(request.headers.value("kvt-token"), QByteArray("tkn-9"));
        const QJsonDocument body = QJsonDocument::fromJson(request.body);
        QVERIFY(!body.isNull());
        if (request.path == "/bas/ds/data" && containsValue(body.object(), "objId", 38))
            sawNavigationRequest = true;
    }
    QVERIFY(sawNavigationRequest);

    QFile logFile(log);
    QVERIFY(logFile.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(logFile.readAll());
    // Every line names its file, line and function.
    static const QRegularExpression line(QStringLiteral("^\\S+ \\S+ \\[(debug|info|warning|critical)\\] \\S+:\\d+ .+ \\(thread [0-9a-f]+\\): "),
                                         QRegularExpression::MultilineOption);
    static const QRegularExpression stamp(QStringLiteral("^\\d{4}-\\d{2}-\\d{2} "));
    int formatted = 0;
    const QStringList lines = text.split('\n', Qt::SkipEmptyParts);
    for (const QString &entry : lines) {
        if (!stamp.match(entry).hasMatch())
            continue;   // the rest of a message that spans lines
        QVERIFY2(line.match(entry).hasMatch(), qPrintable(entry));
        ++formatted;
    }
    QVERIFY(formatted > 5);
    QVERIFY(text.contains(QStringLiteral("opening page")));
}

void tst_Terminal::failures_data()
{
    QTest::addColumn<QString>("setup");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("message");
    QTest::newRow("empty plug-in folder") << "empty" << QStringList() << 3 << "no plug-in found";
    QTest::newRow("missing plug-in folder") << "missing" << QStringList() << 3 << "does not exist";
    QTest::newRow("plug-in that does not load") << "broken" << QStringList() << 3 << "did not load";
    QTest::newRow("screen file missing") << "" << QStringList{"--screen", "/nonexistent-dir/a.json"} << 2 << "cannot read screen";
    QTest::newRow("screen of an unknown component") << "unknown-screen" << QStringList() << 3 << "no component \"TFNoSuchComponent\"";
    QTest::newRow("bad skin") << "" << QStringList{"--skin", "green"} << 2 << "--skin";
    QTest::newRow("unknown option") << "" << QStringList{"--fast"} << 2 << "Unknown option";
    QTest::newRow("page-url of another scheme") << "" << QStringList{"https://example.org/"} << 2 << "view:";
    QTest::newRow("unwritable log") << "" << QStringList{"--log", "/nonexistent-dir/x.log"} << 2 << "cannot open log file";
}

void tst_Terminal::failures()
{
    QFETCH(QString, setup);
    QFETCH(QStringList, arguments);
    QFETCH(int, exitCode);
    QFETCH(QString, message);

    EnvelopeServer server;
    QVERIFY(server.listen());
    QStringList all{"--service", server.baseUrl()};
    const QString plugins = m_dir.filePath("plugins-" + setup);
    if (setup == "empty") {
        QVERIFY(QDir().mkpath(plugins));
    } else if (setup == "broken") {
        QVERIFY(QDir().mkpath(plugins));
        QFile broken(plugins + "/libbroken.so");
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("not a shared library");
    }
    if (setup == "unknown-screen") {
        QFile screen(m_dir.filePath("unknown-screen.json"));
        QVERIFY(screen.open(QIODevice::WriteOnly));
        screen.write(R"({"components": [{"class": "TFNoSuchComponent"}]})");
        all << "--screen" << screen.fileName();
    } else if (!setup.isEmpty()) {
        all << "--plugins" << plugins;
    }
    all << arguments;

    const Run result = run(all, 60000);
    QCOMPARE(result.exitCode, exitCode);
    QVERIFY2(result.err.contains(message.toUtf8()), result.err.constData());
    QVERIFY(server.requests.isEmpty());
}

// A service that never answers keeps a request in flight; the terminal gives
// up after a minute.
void tst_Terminal::unsettledPageExitsWithFour()
{
    EnvelopeServer server(true);
    QVERIFY(server.listen());
    const QString picture = m_dir.filePath("never.png");
    QElapsedTimer clock;
    clock.start();
    const Run result = run({"--service", server.baseUrl(), "--size", "800x600", "--screenshot", picture}, 150000);
    QVERIFY2(result.exitCode == 4, result.err.constData());
    QVERIFY(clock.elapsed() >= 59000);
    QVERIFY(result.err.contains("did not settle"));
    QVERIFY(!QFile::exists(picture));
    QVERIFY(!server.requests.isEmpty());
}

// Without --service the terminal runs the reference service itself, with its
// database in the user's cache folder.
void tst_Terminal::embeddedServiceWithoutServiceOption()
{
    const QString cacheHome = m_dir.filePath("cache");
    const QString picture = m_dir.filePath("embedded.png");
    const Run result = run({"--size", "800x600", "--screenshot", picture, "--settle-ms", "800"}, 180000, cacheHome);
    QVERIFY2(result.exitCode == 0, result.err.constData());
    QVERIFY(!QImage(picture).isNull());
    QVERIFY(QFile::exists(cacheHome + "/subject/subject-terminal/subject-demo.sqlite"));
}

QTEST_GUILESS_MAIN(tst_Terminal)
#include "tst_terminal.moc"
