#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class QWidget;

// Waits until a page has settled, then asks it by name to export its main
// table to a file, as its export button would but without a dialog. The
// host knows nothing of the page's classes: it calls the page's invokable
// "exportMainTable(QString fileName, QString &error)" and listens to its
// signal "signalExportFinished(bool ok, QString message)".
class TableExporter : public QObject
{
    Q_OBJECT
public:
    TableExporter(QWidget *page, const QString &fileName, int settleMs, int timeoutMs = 60000,
                  QObject *parent = nullptr);

    void start();

signals:
    // 0 when the workbook was written, 1 when there was no table or the
    // file could not be written, 4 when the page did not settle in time.
    void finished(int exitCode, const QString &message);

private slots:
    void slotExportFinished(bool ok, const QString &message);

private:
    void poll();
    void exportNow();
    void finish(int exitCode, const QString &message);

    QPointer<QWidget> m_page;
    QString m_fileName;
    int m_settleMs;
    int m_timeoutMs;
    QTimer m_timer;
    QTimer m_exportTimeout;
    QElapsedTimer m_sinceStart;
    QElapsedTimer m_quiet;
    bool m_done = false;
};
