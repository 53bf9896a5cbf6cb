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
};

class CommandLine
{
public:
    enum Outcome { Run, ShowHelp, Error };

    struct Result
    {
        Outcome outcome = Error;
        TerminalOptions options;
        QString message;     // the help text, or what was wrong
        int exitCode = 2;    // for ShowHelp and Error
    };

    // arguments[0] is the program, as in QCoreApplication::arguments().
    static Result parse(const QStringList &arguments);
    static QString helpText();
};
