#include "commandline.h"

#include <QtTest>

Q_DECLARE_METATYPE(CommandLine::Outcome)

class tst_CommandLine : public QObject
{
    Q_OBJECT
private slots:
    void defaults();
    void options_data();
    void options();
    void badArguments_data();
    void badArguments();
    void help();
};

void tst_CommandLine::defaults()
{
    const CommandLine::Result result = CommandLine::parse({"subject-terminal"});
    QCOMPARE(result.outcome, CommandLine::Run);
    const TerminalOptions &o = result.options;
    QVERIFY(o.pageUrl.isEmpty());
    QVERIFY(o.serviceUrl.isEmpty());
    QCOMPARE(o.token, QString());
    QCOMPARE(o.user, QString("demo"));
    QCOMPARE(o.product, QString("subject"));
    QCOMPARE(o.skin, QString("white"));
    QCOMPARE(o.size, QSize(1600, 900));
    QCOMPARE(o.settleMs, 1500);
    QVERIFY(o.logFile.isEmpty());
    QVERIFY(o.screenshotFile.isEmpty());
    QVERIFY(o.screenFile.isEmpty());
    QVERIFY(o.pluginDirectory.isEmpty());
}

// Each row: the arguments, the option it sets and the value as text.
void tst_CommandLine::options_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("expected");
    QTest::newRow("page-url") << QStringList{"view://subjectpage?pnodecode=2&objvwid=260"} << "pageUrl"
                              << "view://subjectpage?pnodecode=2&objvwid=260";
    QTest::newRow("page-url in capitals") << QStringList{"VIEW://SubjectPage?objvwid=1"} << "pageUrl"
                                          << "view://subjectpage?objvwid=1";
    QTest::newRow("service") << QStringList{"--service", "http://127.0.0.1:8123"} << "serviceUrl" << "http://127.0.0.1:8123";
    QTest::newRow("service=") << QStringList{"--service=https://data.example:443/api"} << "serviceUrl"
                              << "https://data.example:443/api";
    QTest::newRow("token") << QStringList{"--token", "abc"} << "token" << "abc";
    QTest::newRow("empty token") << QStringList{"--token", ""} << "token" << "";
    QTest::newRow("user") << QStringList{"--user", "u7"} << "user" << "u7";
    QTest::newRow("product") << QStringList{"--product", "p9"} << "product" << "p9";
    QTest::newRow("skin black") << QStringList{"--skin", "black"} << "skin" << "black";
    QTest::newRow("skin white") << QStringList{"--skin", "white"} << "skin" << "white";
    QTest::newRow("size") << QStringList{"--size", "1280x720"} << "size" << "1280x720";
    QTest::newRow("smallest size") << QStringList{"--size", "100x100"} << "size" << "100x100";
    QTest::newRow("log") << QStringList{"--log", "/tmp/t.log"} << "logFile" << "/tmp/t.log";
    QTest::newRow("screenshot") << QStringList{"--screenshot", "out.png"} << "screenshotFile" << "out.png";
    QTest::newRow("screenshot PNG") << QStringList{"--screenshot", "OUT.PNG"} << "screenshotFile" << "OUT.PNG";
    QTest::newRow("settle-ms") << QStringList{"--screenshot", "a.png", "--settle-ms", "250"} << "settleMs" << "250";
    QTest::newRow("settle-ms 0") << QStringList{"--screenshot", "a.png", "--settle-ms", "0"} << "settleMs" << "0";
    QTest::newRow("screen") << QStringList{"--screen", "zhp.json"} << "screenFile" << "zhp.json";
    QTest::newRow("export") << QStringList{"--export", "out.XLSX"} << "exportFile" << "out.XLSX";
    QTest::newRow("export settle-ms") << QStringList{"--export", "a.xlsx", "--settle-ms", "7"} << "settleMs" << "7";
    QTest::newRow("plugins") << QStringList{"--plugins", "/opt/p"} << "pluginDirectory" << "/opt/p";
    QTest::newRow("verbose") << QStringList{"--verbose"} << "verbose" << "true";
    QTest::newRow("a window needs a display") << QStringList{"--skin", "black"} << "withoutDisplay" << "false";
    QTest::newRow("a picture needs none") << QStringList{"--screenshot", "a.png"} << "withoutDisplay" << "true";
    QTest::newRow("an export needs none") << QStringList{"--export", "a.xlsx"} << "withoutDisplay" << "true";
    QTest::newRow("Qt's options passed over") << QStringList{"-platform", "offscreen", "--style=fusion", "-reverse", "--skin", "black"}
                                              << "skin" << "black";
    QTest::newRow("last of two wins") << QStringList{"--skin", "black", "--skin", "white"} << "skin" << "white";
}

void tst_CommandLine::options()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, field);
    QFETCH(QString, expected);
    const CommandLine::Result result = CommandLine::parse(QStringList{"subject-terminal"} + arguments);
    QVERIFY2(result.outcome == CommandLine::Run, qPrintable(result.message));
    const TerminalOptions &o = result.options;
    const QMap<QString, QString> actual{
        {"pageUrl", o.pageUrl.toString()},
        {"serviceUrl", o.serviceUrl.toString()},
        {"token", o.token},
        {"user", o.user},
        {"product", o.product},
        {"skin", o.skin},
        {"size", QString("%1x%2").arg(o.size.width()).arg(o.size.height())},
        {"logFile", o.logFile},
        {"screenshotFile", o.screenshotFile},
        {"settleMs", QString::number(o.settleMs)},
        {"screenFile", o.screenFile},
        {"pluginDirectory", o.pluginDirectory},
        {"exportFile", o.exportFile},
        {"verbose", o.verbose ? "true" : "false"},
        {"withoutDisplay", o.worksWithoutDisplay ? "true" : "false"},
    };
    QVERIFY(actual.contains(field));
    QCOMPARE(actual.value(field), expected);
}

void tst_CommandLine::badArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("messagePart");
    QTest::newRow("unknown option") << QStringList{"--colour", "red"} << "colour";
    QTest::newRow("service without value") << QStringList{"--service"} << "service";
    QTest::newRow("service not a URL") << QStringList{"--service", "not a url"} << "--service";
    QTest::newRow("service ftp") << QStringList{"--service", "ftp://h/"} << "--service";
    QTest::newRow("service without host") << QStringList{"--service", "http://"} << "--service";
    QTest::newRow("skin red") << QStringList{"--skin", "red"} << "--skin";
    QTest::newRow("skin in capitals") << QStringList{"--skin", "Black"} << "--skin";
    QTest::newRow("size without x") << QStringList{"--size", "1600"} << "--size";
    QTest::newRow("size negative") << QStringList{"--size", "-5x100"} << "--size";
    QTest::newRow("size too small") << QStringList{"--size", "99x100"} << "--size";
    QTest::newRow("size too large") << QStringList{"--size", "100x16385"} << "--size";
    QTest::newRow("size with spaces") << QStringList{"--size", "100 x 100"} << "--size";
    QTest::newRow("screenshot not png") << QStringList{"--screenshot", "out.jpg"} << "--screenshot";
    QTest::newRow("screenshot only suffix") << QStringList{"--screenshot", ".png"} << "--screenshot";
    QTest::newRow("settle-ms text") << QStringList{"--screenshot", "a.png", "--settle-ms", "soon"} << "--settle-ms";
    QTest::newRow("settle-ms negative") << QStringList{"--screenshot", "a.png", "--settle-ms", "-1"} << "--settle-ms";
    QTest::newRow("settle-ms too long") << QStringList{"--screenshot", "a.png", "--settle-ms", "60001"} << "--settle-ms";
    QTest::newRow("settle-ms alone") << QStringList{"--settle-ms", "10"} << "--settle-ms";
    QTest::newRow("export not xlsx") << QStringList{"--export", "out.xls"} << "--export";
    QTest::newRow("export only suffix") << QStringList{"--export", ".xlsx"} << "--export";
    QTest::newRow("export and screenshot") << QStringList{"--export", "a.xlsx", "--screenshot", "a.png"} << "--export";
    QTest::newRow("export of a screen") << QStringList{"--export", "a.xlsx", "--screen", "s.json"} << "--export";
    QTest::newRow("page-url not view") << QStringList{"http://example.org/"} << "page-url";
    QTest::newRow("two page-urls") << QStringList{"view://subjectpage?a=1", "view://subjectpage?a=2"} << "page-url";
    QTest::newRow("empty log") << QStringList{"--log", ""} << "--log";
    QTest::newRow("empty plugins") << QStringList{"--plugins", ""} << "--plugins";
}

void tst_CommandLine::badArguments()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, messagePart);
    const CommandLine::Result result = CommandLine::parse(QStringList{"subject-terminal"} + arguments);
    QCOMPARE(result.outcome, CommandLine::Error);
    QCOMPARE(result.exitCode, 2);
    QVERIFY2(result.message.contains(messagePart), qPrintable(result.message));
}

void tst_CommandLine::help()
{
    const CommandLine::Result result = CommandLine::parse({"subject-terminal", "--help"});
    QCOMPARE(result.outcome, CommandLine::ShowHelp);
    QCOMPARE(result.exitCode, 0);
    const QStringList options{"--service", "--token", "--user", "--product", "--skin", "--size", "--log",
                              "--screenshot", "--settle-ms", "--export", "--screen", "--plugins", "page-url"};
    for (const QString &option : options)
        QVERIFY2(result.message.contains(option), qPrintable(option));
}

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_commandline.moc"
