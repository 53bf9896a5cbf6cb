#include "httptestserver.h"

#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace {

int objIdOf(const RecordedRequest &request)
{
    return QJsonDocument::fromJson(request.body).object().value(QStringLiteral("objId")).toInt(-1);
}

} // namespace

class tst_SubjectTerminal : public QObject
{
    Q_OBJECT
private slots:
    void stockPageOverTheWire();
    void screenOfTwoBoundComponents();
};

void tst_SubjectTerminal::stockPageOverTheWire()
{
    const QString terminal = QStringLiteral(SUBJECT_BIN_DIR "/subject-terminal");
    QVERIFY2(QFile::exists(terminal), qPrintable(terminal));

    HttpTestServer server;
    server.setHandler([](const RecordedRequest &request) {
        CannedReply reply;
        switch (objIdOf(request)) {
        case 38:
            reply.body = HttpTestServer::envelope(QJsonArray{
                QJsonObject{{"NODE_CODE", 100}, {"P_NODE_CODE", 2}, {"NODE_CAP", "行情"}, {"LEVEL", 1},
                            {"OBJ_VW_ID", 0}},
                QJsonObject{{"NODE_CODE", 101}, {"P_NODE_CODE", 100}, {"NODE_CAP", "股票列表"}, {"LEVEL", 2},
                            {"OBJ_VW_ID", 260}}});
            break;
        case 43:
            reply.body = HttpTestServer::envelope(
                QJsonArray{QJsonObject{{"SECT_ID", 5}, {"P_SECT_ID", 0}, {"SECT_NAME", "行业"}}});
            break;
        default:
            reply.body = HttpTestServer::envelope(QJsonArray());
            break;
        }
        return reply;
    });
    QVERIFY(server.start());

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString picture = dir.filePath(QStringLiteral("x.png"));
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(terminal, {QStringLiteral("--service"), server.baseUrl().toString(), QStringLiteral("--user"),
                             QStringLiteral("u1"), QStringLiteral("--product"), QStringLiteral("p1"),
                             QStringLiteral("--token"), QStringLiteral("t1"), QStringLiteral("--screenshot"), picture,
                             QStringLiteral("view://subjectpage?pnodecode=2&objvwid=260&title=股票专题")});
    QVERIFY2(process.waitForStarted(30000), qPrintable(process.errorString()));
    const bool finished = process.waitForFinished(180000);
    const QByteArray output = process.readAll();
    if (!finished)
        process.kill();
    QVERIFY2(finished, output.right(4000).constData());
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
             output.right(4000).constData());
    QVERIFY(QFile::exists(picture));

    const QByteArray auth = R"j("auth":{"prodId":"p1","userId":"u1"})j";
    const QMap<int, QByteArray> expected = {
        {43, "{" + auth + R"j(,"filter":"(SECU_TYP_CODE == :SECU_TYP_CODE)","filterParams":{"SECU_TYP_CODE":10},)j"
                          R"j("objId":43})j"},
        {38, R"j({"P_NODE_CODE":2,)j" + auth + R"j(,"objId":38})j"},
    };
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        QList<RecordedRequest> matching;
        for (const RecordedRequest &request : server.requests()) {
            if (objIdOf(request) == it.key())
                matching.append(request);
        }
        QCOMPARE(matching.size(), 1);
        const RecordedRequest &request = matching.first();
        QCOMPARE(request.method, QByteArray("POST"));
        QCOMPARE(request.target, QByteArray("/bas/ds/data"));
        QCOMPARE(request.body, it.value());
        QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
        QCOMPARE(request.header("kvt-token"), QByteArray("t1"));
        QCOMPARE(request.header("userId"), QByteArray("u1"));
        QCOMPARE(request.header("prodId"), QByteArray("p1"));
        QVERIFY(!request.hasHeader("kvt-format"));
        QVERIFY(!request.hasHeader("kvt-language"));
    }
    // The navigation stood, so the constants followed.
    bool constants = false;
    for (const RecordedRequest &request : server.requests())
        constants = constants || objIdOf(request) == 390;
    QVERIFY(constants);
}

// A composite screen of two components bound to one global argument, with
// the embedded service: both open the argument's view, the screen settles
// and its picture is written.
void tst_SubjectTerminal::screenOfTwoBoundComponents()
{
    const QString terminal = QStringLiteral(SUBJECT_BIN_DIR "/subject-terminal");
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString screenFile = dir.filePath(QStringLiteral("desk.json"));
    QFile screen(screenFile);
    QVERIFY(screen.open(QIODevice::WriteOnly));
    const QByteArray state = R"j({"version": "1.0.0", "titleVisible": true, "filterVisible": true,
        "mainViewVisible": true, "subViewVisible": false, "pageBarVisible": true, "objVwIdBinder": "objVwId"})j";
    screen.write(R"j({"title": "债券", "args": {"objVwId": "债券一览|3110"}, "components": [
        {"class": "TFFrameSubjectZHP", "state": )j" + state + R"j(},
        {"class": "TFFrameSubjectZHP_ZZ", "state": )j" + state + R"j(},
        {"class": "TFNoSuchComponent"}]})j");
    screen.close();
    const QByteArray before = [&] { QFile f(screenFile); f.open(QIODevice::ReadOnly); return f.readAll(); }();

    const QString picture = dir.filePath(QStringLiteral("screen.png"));
    const QString log = dir.filePath(QStringLiteral("screen.log"));
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CACHE_HOME"), dir.filePath(QStringLiteral("cache")));
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(terminal, {QStringLiteral("--screen"), screenFile, QStringLiteral("--size"), QStringLiteral("1200x800"),
                             QStringLiteral("--log"), log, QStringLiteral("--screenshot"), picture});
    QVERIFY2(process.waitForStarted(30000), qPrintable(process.errorString()));
    const bool finished = process.waitForFinished(180000);
    const QByteArray output = process.readAll();
    if (!finished)
        process.kill();
    QVERIFY2(finished, output.right(4000).constData());
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0, output.right(4000).constData());
    QVERIFY2(output.contains("no component \"TFNoSuchComponent\""), output.right(4000).constData());
    const QImage image(picture);
    QCOMPARE(image.size(), QSize(1200, 800));

    QFile logFile(log);
    QVERIFY(logFile.open(QIODevice::ReadOnly));
    const QByteArray lines = logFile.readAll();
    // Each component asked for the bound view, and each table got its rows.
    QCOMPARE(lines.count("TFFrameSubjectZHP::slotsArgsChanged: \"objVwId\" = \"债券一览|3110\""), 2);
    QVERIFY(lines.count("refresh right container: 3110") >= 2);
    QVERIFY(!lines.contains("get subject config failed"));
    // Nothing changed, so the document is as it was.
    QFile after(screenFile);
    QVERIFY(after.open(QIODevice::ReadOnly));
    QCOMPARE(after.readAll(), before);
}

QTEST_GUILESS_MAIN(tst_SubjectTerminal)
#include "tst_subjectterminal.moc"
