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
    m_sincePoll.start();
    m_timer.start();
}

// A widget that is still putting its content on the screen (a chart whose
// page has not drawn what it was sent) says so with the property "settling".
// Only what can be seen counts: a chart in a hidden tab is not waited for.
static bool widgetSettling(const QWidget *window)
{
    const QList<QWidget *> widgets = window->findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (widget->property("settling").toBool() && widget->isVisible())
            return true;
    }
    return false;
}

void Screenshotter::poll()
{
    if (!m_window) {
        m_timer.stop();
        emit finished(1, QStringLiteral("the window went away before the picture was taken"));
        return;
    }
    const bool busy = QThreadPool::globalInstance()->activeThreadCount() > 0 || widgetSettling(m_window);
    // A poll that comes late means the window's thread was busy (a web
    // engine starting, a large model): results may be waiting in its queue
    // although the pool is idle, so the quiet time starts again.
    const bool late = m_sincePoll.restart() > 4 * m_timer.interval();
    if (busy || late || !m_window->isVisible())
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
