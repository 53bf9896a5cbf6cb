// subject-terminal: loads the plug-ins beside it and shows their pages in tabs.

#include "commandline.h"
#include "embeddedservice.h"
#include "logfile.h"
#include "pluginloader.h"
#include "screenshotter.h"
#include "tableexporter.h"
#include "terminalwindow.h"

#include "tfcore/tfappconfig.h"
#include "tfcore/tfcore.h"
#include "tfcore/tfserviceconfig.h"

#include <QApplication>
#include <QDebug>
#include <QDir>
#include <QScopeGuard>
#include <QStandardPaths>
#include <QTabWidget>
#include <QTextStream>

#include <cstdio>

namespace {

enum ExitCode { Done = 0, Failed = 1, BadArguments = 2, PluginFailed = 3 };

int complain(const QString &message, int exitCode)
{
    QTextStream(stderr) << "subject-terminal: " << message << '\n';
    return exitCode;
}

void configureIdentity(const TerminalOptions &options)
{
    TFAppConfig *config = TFAppConfig::instance();
    config->setAppToken(options.token);
    config->setProuctId(options.product);
    TFAppConfig::USERINFO user;
    user.userId = options.user;
    user.userName = options.user;
    config->setUserInfo(user);
}

} // namespace

int main(int argc, char *argv[])
{
    // The command line is read before any application object exists, so that
    // help, version and bad arguments need no display.
    const QStringList arguments = CommandLine::arguments(argc, argv);
    const CommandLine::Result parsed = CommandLine::parse(arguments);
    if (parsed.outcome == CommandLine::ShowHelp || parsed.outcome == CommandLine::ShowVersion) {
        QTextStream(stdout) << parsed.message;
        return Done;
    }
    if (parsed.outcome == CommandLine::Error)
        return complain(parsed.message + QStringLiteral("\nTry 'subject-terminal --help'."), BadArguments);
    const TerminalOptions &options = parsed.options;

    if (CommandLine::platformNeedsDisplay(arguments) && !CommandLine::hasDisplay()) {
        if (!options.worksWithoutDisplay)
            return complain(QStringLiteral("there is no display to show the window on (DISPLAY is not set).\n"
                                           "Run it under a virtual one: xvfb-run -a subject-terminal ...,\n"
                                           "or save a picture only: --screenshot FILE.png"),
                            BadArguments);
        // Pictures and files need no display.
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }

    QString logError;
    if (!LogFile::install(options.logFile, options.verbose, &logError))
        return complain(logError, BadArguments);
    // The log outlives everything below it: pages and the service write
    // their last lines while they are destroyed.
    const auto uninstallLog = qScopeGuard([] { LogFile::uninstall(); });

    // The web engine shares its OpenGL context with the widgets'.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("subject"));
    QCoreApplication::setApplicationName(QStringLiteral("subject-terminal"));

    configureIdentity(options);
    const QString binDir = QCoreApplication::applicationDirPath();
    TFCore *core = TFCore::instance();
    core->setSkinsRoot(QDir(binDir).filePath(QStringLiteral("skins")));
    core->setIniDirectory(QDir(binDir).filePath(QStringLiteral("ini")));
    if (!core->setCurrentSkin(options.skin))
        qWarning() << "skin" << options.skin << "is not installed under" << QDir(binDir).filePath(QStringLiteral("skins"));

    // Plug-ins first: a terminal without its page has no use for a service.
    const QString pluginDir = options.pluginDirectory.isEmpty()
            ? QDir(binDir).filePath(QStringLiteral("plugins")) : options.pluginDirectory;
    PluginLoader plugins(pluginDir);
    if (!plugins.loadAll())
        return complain(plugins.errorString(), PluginFailed);

    EmbeddedService embedded;
    QString serviceDescription;
    if (!options.serviceUrl.isEmpty()) {
        TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), options.serviceUrl);
        serviceDescription = QStringLiteral("service: %1").arg(options.serviceUrl.toString());
    } else if (EmbeddedService::isAvailable()) {
        const QString cache = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
        QString error;
        if (!embedded.start(QDir(cache).filePath(QStringLiteral("subject-demo.sqlite")), options.token, &error))
            return complain(QStringLiteral("the embedded service did not start: %1").arg(error), Failed);
        TFServiceConfig::instance()->setHttpUrl(QStringLiteral("servercfg.ini:Subject"), embedded.baseUrl());
        serviceDescription = QStringLiteral("service: %1 (embedded)").arg(embedded.baseUrl().toString());
    } else {
        const QString message = QStringLiteral("no service configured: pass --service URL");
        qWarning().noquote() << message;
        QTextStream(stderr) << "subject-terminal: " << message << '\n';
        serviceDescription = message;
    }

    TerminalWindow window(&plugins);
    window.setServiceDescription(serviceDescription);
    window.resize(options.size);
    QString error;
    // A composite screen replaces the default page; a page-url given as well
    // opens beside it.
    if (!options.screenFile.isEmpty()) {
        bool unknownComponent = false;
        if (!window.openScreen(options.screenFile, &error, &unknownComponent))
            return complain(error, unknownComponent ? PluginFailed : BadArguments);
    }
    if (options.screenFile.isEmpty() || !options.pageUrl.isEmpty()) {
        const QUrl pageUrl = options.pageUrl.isEmpty() ? plugins.defaultPageUrl() : options.pageUrl;
        if (pageUrl.isEmpty())
            return complain(QStringLiteral("no page-url given and the plug-in names no default Url"), BadArguments);
        if (!window.openPage(pageUrl, &error))
            return complain(QStringLiteral("cannot open %1: %2").arg(pageUrl.toString(), error), PluginFailed);
    }
    window.show();

    int exitCode = Done;
    Screenshotter *shooter = nullptr;
    if (!options.screenshotFile.isEmpty()) {
        shooter = new Screenshotter(&window, options.screenshotFile, options.settleMs, 60000, &app);
        QObject::connect(shooter, &Screenshotter::finished, &app, [&exitCode](int code, const QString &message) {
            exitCode = code;
            if (code == Done)
                QTextStream(stdout) << message << '\n';
            else
                QTextStream(stderr) << "subject-terminal: " << message << '\n';
            QCoreApplication::exit(code);
        });
        shooter->start();
    }

    TableExporter *exporter = nullptr;
    if (!options.exportFile.isEmpty()) {
        exporter = new TableExporter(window.tabs()->currentWidget(), options.exportFile, options.settleMs, 60000, &app);
        QObject::connect(exporter, &TableExporter::finished, &app, [&exitCode](int code, const QString &message) {
            exitCode = code;
            QTextStream(code == Done ? stdout : stderr) << (code == Done ? "" : "subject-terminal: ") << message << '\n';
            QCoreApplication::exit(code);
        });
        exporter->start();
    }

    const int result = app.exec();
    return shooter || exporter ? exitCode : result;
}
