#include "commandline.h"

#include <QtTest>

Q_DECLARE_METATYPE(CommandLine::Outcome)

class tst_CommandLine : public QObject
{
    Q_OBJECT
private slots:
    void options_data();
    void options();
    void badArguments_data();
    void badArguments();
    void help();
    void platformNeedsDisplay_data();
    void platformNeedsDisplay();
    void cleanup()
    {
        if (m_platform.isNull())
            qunsetenv("QT_QPA_PLATFORM");
        else
            qputenv("QT_QPA_PLATFORM", m_platform);
    }

private:
    const QByteArray m_platform = qgetenv("QT_QPA_PLATFORM");
};

// Each row: the arguments, the option it sets and the value as text.
void tst_CommandLine::options_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("expected");
    for (const auto &[field, value] : QList<QPair<QString, QString>>{
             {"pageUrl", ""}, {"serviceUrl", ""}, {"token", ""}, {"user", "demo"}, {"product", "subject"},
             {"skin", "white"}, {"size", "1600x900"}, {"settleMs", "1500"}, {"logFile", ""}, {"exportFile", ""},
             {"screenshotFile", ""}, {"screenFile", ""}, {"pluginDirectory", ""}, {"verbose", "false"}})
        QTest::addRow("default %s", qPrintable(field)) << QStringList() << field << value;
    QTest::newRow("page-url") << QStringList{"view://subjectpage?pnodecode=2&objvwid=260"} << "pageUrl"
                              << "view://subjectpage?pnodecode=2&objvwid=260";
    QTest::newRow("page-url in capitals") << QStringList{"VIEW://SubjectPage?objvwid=1"} << "pageUrl"
                                          << "view://subjectpage?objvwid=1";
    QTest::newRow("service") << QStringList{"--service", "http://127.0.0.1:8123"} << "serviceUrl" << "http://127.0.0.1:8123";
    QTest::newRow("service=") << QStringList{"--service=https://data.example:443/api"} << "serviceUrl"
                              << "https://data.example:443/api";
    QTest::newRow("empty token") << QStringList{"--token", ""} << "token" << "";
    QTest::newRow("user") << QStringList{"--user", "u7"} << "user" << "u7";
    QTest::newRow("product") << QStringList{"--product", "p9"} << "product" << "p9";
    QTest::newRow("skin black") << QStringList{"--skin", "black"} << "skin" << "black";
    QTest::newRow("size") << QStringList{"--size", "1280x720"} << "size" << "1280x720";
    QTest::newRow("smallest size") << QStringList{"--size", "100x100"} << "size" << "100x100";
    QTest::newRow("log") << QStringList{"--log", "/tmp/t.log"} << "logFile" << "/tmp/t.log";
    QTest::newRow("screenshot PNG") << QStringList{"--screenshot", "OUT.PNG"} << "screenshotFile" << "OUT.PNG";
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
    QTest::newRow("service not a URL") << QStringList{"--service", "not a url"} << "--service";
    QTest::newRow("service ftp") << QStringList{"--service", "ftp://h/"} << "--service";
    QTest::newRow("service without host") << QStringList{"--service", "http://"} << "--service";
    QTest::newRow("skin red") << QStringList{"--skin", "red"} << "--skin";
    QTest::newRow("skin in capitals") << QStringList{"--skin", "Black"} << "--skin";
    QTest::newRow("size without x") << QStringList{"--size", "1600"} << "--size";
    QTest::newRow("size too small") << QStringList{"--size", "99x100"} << "--size";
    QTest::newRow("size too large") << QStringList{"--size", "100x16385"} << "--size";
    QTest::newRow("screenshot not png") << QStringList{"--screenshot", "out.jpg"} << "--screenshot";
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

// The version and a bad option are seen whole where the terminal prints them.
void tst_CommandLine::help()
{
    const CommandLine::Result help = CommandLine::parse({"subject-terminal", "--help"});
    QCOMPARE(help.outcome, CommandLine::ShowHelp);
    QCOMPARE(help.exitCode, 0);
    for (const char *option : {"--service", "--token", "--user", "--product", "--skin", "--size", "--log",
                               "--screenshot", "--settle-ms", "--export", "--screen", "--plugins", "page-url"})
        QVERIFY2(help.message.contains(QLatin1String(option)), option);
}

// Whether the platform Qt will pick draws on a display: the last -platform
// argument, else the environment, else the default (xcb).
void tst_CommandLine::platformNeedsDisplay_data()
{
    QTest::addColumn<QByteArray>("environment");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<bool>("needsDisplay");
    QTest::newRow("nothing set") << QByteArray() << QStringList() << true;
    QTest::newRow("environment offscreen") << QByteArray("offscreen") << QStringList() << false;
    QTest::newRow("argument beats environment") << QByteArray("offscreen") << QStringList{"-platform", "xcb"} << true;
    QTest::newRow("inline value") << QByteArray("xcb") << QStringList{"--platform=offscreen"} << false;
    QTest::newRow("options after a colon") << QByteArray() << QStringList{"-platform", "xcb:nograb"} << true;
    QTest::newRow("wayland") << QByteArray("wayland-egl") << QStringList() << true;
    QTest::newRow("minimal") << QByteArray() << QStringList{"-platform", "minimal"} << false;
}

void tst_CommandLine::platformNeedsDisplay()
{
    QFETCH(QByteArray, environment);
    QFETCH(QStringList, arguments);
    QFETCH(bool, needsDisplay);
    if (environment.isEmpty())
        qunsetenv("QT_QPA_PLATFORM");
    else
        qputenv("QT_QPA_PLATFORM", environment);
    QCOMPARE(CommandLine::platformNeedsDisplay(QStringList{"subject-terminal"} + arguments), needsDisplay);
}

QTEST_GUILESS_MAIN(tst_CommandLine)
#include "tst_commandline.moc"
