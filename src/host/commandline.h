#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <QUrl>

// What the terminal was asked to do, as read from its command line.
struct TerminalOptions
{
    QUrl pageUrl;            // empty: the plug-in's default page
    QUrl serviceUrl;         // empty: the embedded reference service
    QString token;
    QString user = QStringLiteral("demo");
    QString product = QStringLiteral("subject");
    QString skin = QStringLiteral("white");
    QSize size = QSize(1600, 900);
    QString logFile;
    QString screenshotFile;
    int settleMs = 1500;
    QString exportFile;      // --export: the workbook to write
    QString screenFile;
    QString pluginDirectory; // empty: plugins/ beside the binary
    bool verbose = false;    // debug lines on the console too
    bool worksWithoutDisplay = false; // draws only into files (--screenshot, ...)
};

class CommandLine
{
public:
    enum Outcome { Run, ShowHelp, ShowVersion, Error };

    struct Result
    {
        Outcome outcome = Error;
        TerminalOptions options;
        QString message;     // the help or version text, or what was wrong
        int exitCode = 2;    // for ShowHelp and Error
    };

    // arguments[0] is the program. Qt's own options (-platform, -style, ...)
    // are passed over, so that the command line of main() can be read before
    // any application object exists.
    static Result parse(const QStringList &arguments);
    static QString helpText();
    static QString versionText();

    // The command line as main() received it, without an application object.
    static QStringList arguments(int argc, char **argv);

    // Whether the platform plug-in that Qt will pick (the -platform argument,
    // else QT_QPA_PLATFORM, else xcb) draws on an X or Wayland display.
    static bool platformNeedsDisplay(const QStringList &arguments);
    static bool hasDisplay();
};
