#pragma once

#include "echarts/tfdatasource.h"
#include "tfbaseview.h"

#include <QMap>
#include <QStandardPaths>
#include <QVariantMap>
#include <QWebEnginePage>

class QHBoxLayout;
class QTimer;
class QWebChannel;
class QWebEngineView;
class TFDm;
class TFFilterWidget;

// The page of a chart: it stays on the program's own resources. Any other
// address, a link in a chart's text for one, goes to the desktop's browser.
class PreviewPage : public QWebEnginePage
{
    Q_OBJECT
public:
    explicit PreviewPage(QObject *parent = nullptr);

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
};

// The view of the chart kind: an optional filter bar and a web view whose
// page draws with ECharts. The data source is published to the page as
// "chartManager"; every decision about the chart is taken here, the page
// only draws the messages it is sent.
class TFMultiCharts : public TFBaseView
{
    Q_OBJECT
public:
    explicit TFMultiCharts(QWidget *parent = nullptr);
    ~TFMultiCharts() override;

    // Rows of a table drawn in place of a reply's.
    void setRows(const QList<QVariantMap> &rows);
    bool isgetchartdata() const { return m_dataSource.isgetchartdata(); }
    // Asks the service for the whole data set with the bar's filters, the
    // given pair (or the frame's block pair) and the view's order.
    void requestData(const QString &name = QString(), const QVariant &value = QVariant());

    bool isPageReady() const { return m_pageReady; }
    TFDataSource *dataSource() { return &m_dataSource; }
    QWebEngineView *webView() const { return m_webView; }
    TFFilterWidget *filterWidget() const { return m_filterWidget; }

signals:
    void signalGetData();

public slots:
    void slotChangeSkin(QString skinStr);
    void slotShowChart();
    void slotPrintPng();
    // With a path, the picture goes to path_yyyyMMddhhmmss.png; with an
    // empty one, the user is asked. The result is the file, or empty.
    QString slotSaveImage(QString tmppath = QStandardPaths::writableLocation(QStandardPaths::TempLocation));
    void slotCopyImage();

    void clear() override;
    bool parseConfig(const QJsonValue &config, bool isNew) override;
    bool handleResponse(const QJsonValue &data, const QString &text, int flag) override;
    bool isDataSourceFilter(const QString &name) override;
    void setFilterArgs(QMap<QString, QVariant> args) override;
    FilterParam::DataSourceFilter order() override;
    QList<FilterParam::Cntrl> getCntrls() override;
    QList<TFTableModelData::FilterData> filterList() override;
    int viewType() override;
    QString caption() override;
    bool isCross() override;

private:
    void countMessage();
    void updateSettling();
    void pollDrawn();

    struct Private
    {
        int messagesSent = 0;   // data messages emitted to the page
        int messagesDrawn = 0;  // of which the page has drawn
        QTimer *drawnPoll = nullptr;
        qint64 rowsArrivedAt = 0;   // when the last reply came, for the log
        bool requestInFlight = false;
        bool readyAtArrival = false;
    };

    Private m_d;
    QMap<QString, QVariant> m_unused;
    TFDataSource m_dataSource;
    QWebEngineView *m_webView = nullptr;
    QWebChannel *m_channel = nullptr;
    QHBoxLayout *m_layout = nullptr;
    bool m_pageReady = false;
    TFFilterWidget *m_filterWidget = nullptr;
    TFDm *m_dm = nullptr;
};
