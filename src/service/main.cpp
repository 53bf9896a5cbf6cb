#include "subjectservice.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTextStream>

#include <QTimer>

#include <atomic>
#include <csignal>

namespace {

std::atomic<bool> stopRequested{false};

void requestStop(int)
{
    stopRequested = true;
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("subject-service"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Reference data service with the demo catalogue."));
    parser.addHelpOption();
    const QCommandLineOption listen(QStringLiteral("listen"), QStringLiteral("Address to listen on."),
                                    QStringLiteral("ADDR"), QStringLiteral("127.0.0.1"));
    const QCommandLineOption port(QStringLiteral("port"), QStringLiteral("Port; 0 picks a free one."),
                                  QStringLiteral("N"), QStringLiteral("0"));
    const QCommandLineOption db(QStringLiteral("db"), QStringLiteral("SQLite file, created with the demo data when missing."),
                                QStringLiteral("FILE"));
    const QCommandLineOption token(QStringLiteral("token"), QStringLiteral("Answer 401 unless kvt-token equals TEXT."),
                                   QStringLiteral("TEXT"));
    const QCommandLineOption scale(QStringLiteral("scale"), QStringLiteral("Row-count multiplier of the demo data."),
                                   QStringLiteral("N"), QStringLiteral("1"));
    parser.addOptions({listen, port, db, token, scale});
    parser.process(app);

    QTextStream err(stderr);
    if (!parser.positionalArguments().isEmpty()) {
        err << "subject-service: unexpected argument " << parser.positionalArguments().first() << '\n';
        return 2;
    }
    bool portOk = false;
    const uint portNumber = parser.value(port).toUInt(&portOk);
    bool scaleOk = false;
    const int scaleNumber = parser.value(scale).toInt(&scaleOk);
    if (!portOk || portNumber > 65535) {
        err << "subject-service: --port needs a number from 0 to 65535\n";
        return 2;
    }
    if (!scaleOk || scaleNumber < 1 || scaleNumber > 1000) {
        err << "subject-service: --scale needs a number from 1 to 1000\n";
        return 2;
    }

    SubjectService::Options options;
    options.listenAddress = parser.value(listen);
    options.port = quint16(portNumber);
    options.dbPath = parser.value(db);
    options.token = parser.value(token);
    options.scale = scaleNumber;

    SubjectService::Server server(options);
    QString error;
    if (!server.start(&error)) {
        err << "subject-service: " << error << '\n';
        return 1;
    }
    QTextStream(stdout) << "listening on http://" << options.listenAddress << ':' << server.port() << Qt::endl;

    // A signal only sets a flag; the event loop notices it.
    std::signal(SIGINT, requestStop);
    std::signal(SIGTERM, requestStop);
    QTimer stopCheck;
    QObject::connect(&stopCheck, &QTimer::timeout, &app, [] {
        if (stopRequested)
            QCoreApplication::quit();
    });
    stopCheck.start(200);
    const int rc = app.exec();
    server.stop();
    return rc;
}
