#include "logfile.h"

#include <QDateTime>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>
#include <QThread>

#include <cstdio>

namespace {

QMutex logMutex;
QFile *logFile = nullptr;
bool verboseConsole = false;
QtMessageHandler previousHandler = nullptr;

const char *levelName(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg: return "debug";
    case QtInfoMsg: return "info";
    case QtWarningMsg: return "warning";
    case QtCriticalMsg: return "critical";
    case QtFatalMsg: return "fatal";
    }
    return "?";
}

void writeLine(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    bool toConsole = type != QtDebugMsg && type != QtInfoMsg;
    QByteArray line;
    {
        QMutexLocker locker(&logMutex);
        toConsole = toConsole || verboseConsole;
        // A debug line that goes nowhere is not even formatted: the tree
        // logs one per node, and a large tree has many.
        if (!toConsole && !logFile)
            return;
        line = LogFile::formatLine(type, context, message).toUtf8() + '\n';
        if (logFile) {
            logFile->write(line);
            logFile->flush();
        }
    }
    if (toConsole) {
        std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
        std::fflush(stderr);
    }
    if (type == QtFatalMsg)
        std::abort();
}

} // namespace

QString LogFile::formatLine(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    return QStringLiteral("%1 [%2] %3:%4 %5 (thread %6): %7")
            .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")),
                 QLatin1String(levelName(type)),
                 QString::fromUtf8(context.file ? context.file : "?"),
                 QString::number(context.line),
                 QString::fromUtf8(context.function ? context.function : "?"),
                 QString::number(quintptr(QThread::currentThreadId()), 16),
                 message);
}

bool LogFile::install(const QString &fileName, bool verbose, QString *error)
{
    QFile *file = nullptr;
    if (!fileName.isEmpty()) {
        file = new QFile(fileName);
        if (!file->open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text)) {
            if (error)
                *error = QStringLiteral("cannot open log file \"%1\": %2").arg(fileName, file->errorString());
            delete file;
            return false;
        }
    }
    {
        QMutexLocker locker(&logMutex);
        delete logFile;
        logFile = file;
        verboseConsole = verbose;
    }
    QtMessageHandler old = qInstallMessageHandler(writeLine);
    if (old != writeLine)
        previousHandler = old;
    return true;
}

void LogFile::uninstall()
{
    qInstallMessageHandler(previousHandler);
    previousHandler = nullptr;
    QMutexLocker locker(&logMutex);
    delete logFile;
    logFile = nullptr;
}
