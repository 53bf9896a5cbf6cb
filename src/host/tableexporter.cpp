#include "tableexporter.h"

#include "tfcore/invokerbase.h"

#include <QDebug>
#include <QThreadPool>
#include <QWidget>

TableExporter::TableExporter(QWidget *page, const QString &fileName, int settleMs, int timeoutMs,
                             QObject *parent)
    : QObject(parent)
    , m_page(page)
    , m_fileName(fileName)
    , m_settleMs(settleMs)
    , m_timeoutMs(timeoutMs)
{
    m_timer.setInterval(50);
    connect(&m_timer, &QTimer::timeout, this, &TableExporter::poll);
    // The export fetches every row and writes them all; a long table takes
    // its time, but not forever.
    m_exportTimeout.setSingleShot(true);
    m_exportTimeout.setInterval(10 * 60 * 1000);
    connect(&m_exportTimeout, &QTimer::timeout, this,
            [this] { finish(1, QStringLiteral("the export did not finish within 10 minutes")); });
}

void TableExporter::start()
{
    m_sinceStart.start();
    m_quiet.start();
    m_timer.start();
}

void TableExporter::poll()
{
    if (!m_page) {
        finish(1, QStringLiteral("the page went away before it was exported"));
        return;
    }
    // Every service request runs as one runnable of the global pool:
    // settled means none active, and none for settleMs.
    if (QThreadPool::globalInstance()->activeThreadCount() > 0 || !m_page->isVisible())
        m_quiet.restart();
    if (m_quiet.elapsed() >= m_settleMs) {
        m_timer.stop();
        qDebug() << "settled after" << m_sinceStart.elapsed() << "ms; exporting to" << m_fileName;
        exportNow();
        return;
    }
    if (m_sinceStart.elapsed() >= m_timeoutMs)
        finish(4, QStringLiteral("the page did not settle within %1 s; nothing exported").arg(m_timeoutMs / 1000));
}

void TableExporter::exportNow()
{
    const QString cannot = QStringLiteral("the page (%1) cannot export a table").arg(m_page->metaObject()->className());
    if (!connect(m_page, SIGNAL(signalExportFinished(bool,QString)), this, SLOT(slotExportFinished(bool,QString)))) {
        finish(1, cannot);
        return;
    }
    m_exportTimeout.start();
    InvokerBase invoker;
    invoker.arg<QString>(m_fileName, "QString").arg<QString>(QString(), "QString");
    if (!invoker.invoke(m_page, "exportMainTable")) {
        finish(1, cannot);
        return;
    }
    const QString error = invoker.result(1).toString();
    if (!error.isEmpty())
        finish(1, error);
}

void TableExporter::slotExportFinished(bool ok, const QString &message)
{
    finish(ok ? 0 : 1, message);
}

void TableExporter::finish(int exitCode, const QString &message)
{
    if (m_done)
        return;
    m_done = true;
    m_timer.stop();
    m_exportTimeout.stop();
    emit finished(exitCode, message);
}
