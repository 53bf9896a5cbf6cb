#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QWidget;

// Waits until the page has settled, then saves a picture of the window.
// Every service request of a page runs as one runnable of the global thread
// pool, so "settled" means: no runnable active and no visible widget with
// the property "settling" set, and neither for settleMs.
class Screenshotter : public QObject
{
    Q_OBJECT
public:
    Screenshotter(QWidget *window, const QString &fileName, int settleMs, int timeoutMs = 60000,
                  QObject *parent = nullptr);

    void start();

signals:
    // 0 when the picture was saved, 1 when it could not be written, 4 when
    // the page did not settle in time.
    void finished(int exitCode, const QString &message);

private:
    void poll();

    QPointer<QWidget> m_window;
    QString m_fileName;
    int m_settleMs;
    int m_timeoutMs;
    QTimer m_timer;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_quiet;
    QElapsedTimer m_sincePoll;
};
