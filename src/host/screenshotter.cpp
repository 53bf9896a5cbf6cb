#include "screenshotter.h"

#include <QDebug>
#include <QPixmap>
#include <QThreadPool>
#include <QWidget>

Screenshotter::Screenshotter(QWidget *window, const QString &fileName, int settleMs, int timeoutMs,
                             QObject *parent)
    : QObject(parent)
    , m_window(window)
    , m_fileName(fileName)
    , m_settleMs(settleMs)
    , m_timeoutMs(timeoutMs)
{
    m_timer.setInterval(50);
    connect(&m_timer, &QTimer::timeout, this, &Screenshotter::poll);
}

void Screenshotter::start()
{
    m_sinceStart.start();
    m_quiet.start();
    m_timer.start();
}

void Screenshotter::poll()
{
    if (!m_window) {
        m_timer.stop();
        emit finished(1, QStringLiteral("the window went away before the picture was taken"));
        return;
    }
    const bool busy = QThreadPool::globalInstance()->activeThreadCount() > 0;
    if (busy || !m_window->isVisible())
        m_quiet.restart();

    if (m_quiet.elapsed() >= m_settleMs) {
        m_timer.stop();
        const QPixmap picture = m_window->grab();
        if (picture.isNull() || !picture.save(m_fileName, "PNG")) {
            emit finished(1, QStringLiteral("cannot write the picture to \"%1\"").arg(m_fileName));
            return;
        }
        qDebug() << "settled after" << m_sinceStart.elapsed() << "ms; picture saved to" << m_fileName;
        emit finished(0, QStringLiteral("saved %1").arg(m_fileName));
        return;
    }
    if (m_sinceStart.elapsed() >= m_timeoutMs) {
        m_timer.stop();
        emit finished(4, QStringLiteral("the page did not settle within %1 s; no picture taken")
                             .arg(m_timeoutMs / 1000));
    }
}
