#include "tfmulticharts.h"

#include "filterwidget/tffilterwidget.h"
#include "net/tfdm.h"
#include "net/tfjsp.h"
#include "net/tfuc.h"
#include "tfsubjectmainframe.h"

#include "tfcore/tfcore.h"

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QDebug>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <QTimer>
#include <QWebChannel>
#include <QWebEngineSettings>
#include <QWebEngineView>

namespace {

const char kPageUrl[] = "qrc:/chart/web/html/index.html";

// How often the view asks the page whether the last message is drawn.
constexpr int kDrawnPollMs = 50;

QWidget *ancestorNamed(QWidget *widget, const char *className)
{
    for (QWidget *walk = widget ? widget->parentWidget() : nullptr; walk; walk = walk->parentWidget()) {
        if (qstrcmp(walk->metaObject()->className(), className) == 0)
            return walk;
    }
    return nullptr;
}

TFUc::Params toParams(const QList<FilterParam::DataSourceFilter> &list)
{
    TFUc::Params params;
    for (const FilterParam::DataSourceFilter &filter : list)
        params.append({ filter.key, filter.value });
    return params;
}

} // namespace

PreviewPage::PreviewPage(QObject *parent)
    : QWebEnginePage(parent)
{
}

bool PreviewPage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame)
{
    Q_UNUSED(type)
    Q_UNUSED(isMainFrame)
    if (url.scheme() == QLatin1String("qrc"))
        return true;
    QDesktopServices::openUrl(url);
    return false;
}

static void initChartResources()
{
    // The page lives in a static library; naming its resources keeps them linked.
    Q_INIT_RESOURCE(chartweb);
}

TFMultiCharts::TFMultiCharts(QWidget *parent)
    : TFBaseView(parent)
{
    initChartResources();
    if (objectName().isEmpty()) {
        setObjectName(QStringLiteral("TFMultiCharts"));
        resize(669, 295);
        setWindowTitle(QCoreApplication::translate("TFMultiCharts", "WXMultiCharts"));
        QMetaObject::connectSlotsByName(this);
    }
    m_d.drawnPoll = new QTimer(this);
    m_d.drawnPoll->setInterval(kDrawnPollMs);
    connect(m_d.drawnPoll, &QTimer::timeout, this, &TFMultiCharts::pollDrawn);

    m_layout = new QHBoxLayout(this);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_filterWidget = new TFFilterWidget(this);
    m_filterWidget->hide();
    m_layout->addWidget(m_filterWidget);
    // The bar's query button asks again with what the bar now says.
    connect(m_filterWidget, &TFFilterWidget::sigGetDataButtonClicked, this, [this] { requestData(); });

    auto *page = new PreviewPage(this);
    m_webView = new QWebEngineView(this);
    m_webView->setPage(page);

    connect(&m_dataSource, &TFDataSource::signalCanShowChart, this, &TFMultiCharts::slotShowChart);
    connect(&m_dataSource, &TFDataSource::signalMixedChartData, this, &TFMultiCharts::countMessage);
    connect(&m_dataSource, &TFDataSource::signalPieData, this, &TFMultiCharts::countMessage);

    QWebEngineSettings *settings = QWebEngineSettings::globalSettings();
    settings->setAttribute(QWebEngineSettings::PluginsEnabled, true);
    settings->setAttribute(QWebEngineSettings::JavascriptEnabled, true);

    m_channel = new QWebChannel(page);
    m_channel->registerObject(QStringLiteral("chartManager"), &m_dataSource);
    page->setWebChannel(m_channel);
    page->setUrl(QUrl(QLatin1String(kPageUrl)));

    // The bar keeps its own width; the chart takes the rest.
    m_filterWidget->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    m_layout->addWidget(m_webView, 1);
    m_webView->setContentsMargins(0, 0, 0, 0);
    m_webView->show();

    connect(TFCore::instance(), &TFCore::signalSkinChanged, this, &TFMultiCharts::slotChangeSkin);
    slotChangeSkin(TFCore::instance()->getCurrentSkinId());

    connect(&m_dataSource, &TFDataSource::signalSaveImage, this, [this](const QString &path) { slotSaveImage(path); });
    connect(&m_dataSource, &TFDataSource::signalCopyImage, this, &TFMultiCharts::slotCopyImage);
    connect(&m_dataSource, &TFDataSource::signalPrintImage, this, &TFMultiCharts::slotPrintPng);
}

TFMultiCharts::~TFMultiCharts()
{
    // The channel goes first, then the view and its page: the page must not
    // call into a data source that is already gone. The page answers the
    // questions still open when it dies, so it goes while this is whole.
    QWebEnginePage *page = m_webView->page();
    delete m_channel;
    m_channel = nullptr;
    delete m_webView;
    m_webView = nullptr;
    delete page;
    delete m_dm;
}

// Page

void TFMultiCharts::slotShowChart()
{
    slotChangeSkin(TFCore::instance()->getCurrentSkinId());
    if (m_dataSource.hasSeries())
        m_dataSource.slotRefreshChartDaTa();
    m_pageReady = true;
    updateSettling();
}

void TFMultiCharts::slotChangeSkin(QString skinStr)
{
    qDebug() << "skin changed-------->" << skinStr;
    const QString skin = skinStr.toLower();
    QString theme = skinStr;
    QString background;
    if (skin == QLatin1String("white") || skin == QLatin1String("default")) {
        theme = QStringLiteral("white");
        background = QStringLiteral("#FFFFFF");
    } else if (skin == QLatin1String("black")) {
        background = QStringLiteral("#080B10");
    } else if (skin == QLatin1String("mid")) {
        theme = QStringLiteral("black");
    }
    m_webView->page()->setBackgroundColor(background.isEmpty() ? QColor() : QColor(background));
    const QJsonObject message { { QStringLiteral("theme"), theme } };
    emit m_dataSource.signalChangeTheme(QJsonDocument(message).toJson(QJsonDocument::Compact));
}

// Whether a chart has been sent and not drawn yet: the terminal waits for
// the page before it counts it as settled.
void TFMultiCharts::countMessage()
{
    ++m_d.messagesSent;
    updateSettling();
}

void TFMultiCharts::updateSettling()
{
    const bool waiting = m_d.requestInFlight || (!m_pageReady && m_dataSource.hasSeries())
                         || m_d.messagesDrawn < m_d.messagesSent;
    setProperty("settling", waiting);
    if (m_d.messagesDrawn < m_d.messagesSent) {
        if (!m_d.drawnPoll->isActive())
            m_d.drawnPoll->start();
    } else {
        m_d.drawnPoll->stop();
    }
}

void TFMultiCharts::pollDrawn()
{
    const int sent = m_d.messagesSent;
    QPointer<TFMultiCharts> self(this);
    m_webView->page()->runJavaScript(QStringLiteral("typeof drawCount === 'number' ? [drawCount, drawnAt] : [-1, 0]"),
                                     [self, sent](const QVariant &result) {
        if (!self)
            return;
        // The page counts what it has drawn since it was loaded, and when it
        // drew last (milliseconds since the epoch, the same clock as ours).
        const QVariantList answer = result.toList();
        if (answer.value(0).toInt() < sent)
            return;
        if (self->m_d.messagesDrawn < sent && self->m_d.rowsArrivedAt > 0) {
            qDebug() << "chart drawn" << answer.value(1).toLongLong() - self->m_d.rowsArrivedAt
                     << "ms after its rows arrived; page ready when they came:" << self->m_d.readyAtArrival;
            self->m_d.rowsArrivedAt = 0;
        }
        self->m_d.messagesDrawn = qMax(self->m_d.messagesDrawn, sent);
        self->updateSettling();
    });
}

// Image

QString TFMultiCharts::slotSaveImage(QString tmppath)
{
    QString target;
    if (!tmppath.isEmpty()) {
        target = tmppath + QStringLiteral("_%1.png").arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMddhhmmss")));
    } else {
        QString name = caption();
        name.replace(QLatin1Char('/'), QLatin1Char('-'));
        target = QFileDialog::getSaveFileName(nullptr, QStringLiteral("保存"), name,
                                              QStringLiteral("Images (*.png);;Images (*.jpg)"));
        if (target.isEmpty())
            return QString();
    }
    const QPixmap picture = grab();
    picture.save(target);
    return target;
}

void TFMultiCharts::slotCopyImage()
{
    const QString file = slotSaveImage(QStandardPaths::writableLocation(QStandardPaths::TempLocation));
    const QImage image(file);
    QApplication::clipboard()->setImage(image);
}

void TFMultiCharts::slotPrintPng()
{
    QPrinter chosen(QPrinter::ScreenResolution);
    if (chosen.printerName().isEmpty())
        return;
    QPrintDialog dialog(&chosen);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QImage image(slotSaveImage(QStandardPaths::writableLocation(QStandardPaths::TempLocation)));
    // The picture goes to a printer of its own: the dialog's choices stay
    // with the one it was shown.
    QPrinter printer(QPrinter::ScreenResolution);
    QPainter painter(&printer);
    const QRect viewport = painter.viewport();
    QSize size = image.size();
    size.scale(viewport.size(), Qt::KeepAspectRatio);
    painter.setViewport(viewport.x(), viewport.y(), size.width(), size.height());
    painter.setWindow(image.rect());
    painter.drawImage(0, 0, image);
}

// Data

void TFMultiCharts::setRows(const QList<QVariantMap> &rows)
{
    m_dataSource.setRows(rows);
    if (m_pageReady)
        m_dataSource.slotRefreshChartDaTa();
    updateSettling();
}

void TFMultiCharts::requestData(const QString &name, const QVariant &value)
{
    if (!m_dm)
        m_dm = new TFDm(this);

    QPair<QString, QVariant> pair(name, value);
    if (pair.first.isNull() || pair.second.isNull()) {
        if (auto *frame = qobject_cast<TFSubjectMainFrame *>(ancestorNamed(this, "TFSubjectMainFrame")))
            pair = frame->blockFilter();
    }
    QList<FilterParam::DataSourceFilter> params;
    QList<FilterParam::CustomFilter> filters;
    m_filterWidget->finalFilter(params, filters);
    params.append(FilterParam::DataSourceFilter { pair.first, pair.second });
    params.append(order());
    setParams(params);
    setFilters(filters);

    // A chart always asks for the whole set.
    const TFUc::TFRequestContent content = isCross()
        ? TFUc::wholeDataSetRequest(viewId(), toParams(params), filters)
        : TFUc::viewDataRequest(viewId(), toParams(params), filters, TFUc::TFPaging { true, 1, 200 });
    // The rows are on their way until the result has been dealt with here:
    // the pool may be idle long before a busy page thread takes the result.
    m_d.requestInFlight = true;
    updateSettling();
    QPointer<TFMultiCharts> self(this);
    m_dm->start(content, [self](bool isOk, const QByteArray &data) {
        if (!self)
            return;
        self->m_d.requestInFlight = false;
        NtResponse response;
        if (isOk && TFJSP::parseResponse(QString::fromUtf8(data), response))
            self->handleResponse(response.data, QString(), 1);
        self->updateSettling();
    });
}

// Roles of a view

void TFMultiCharts::clear()
{
    m_dataSource.clear();
    updateSettling();
}

bool TFMultiCharts::parseConfig(const QJsonValue &config, bool isNew)
{
    Q_UNUSED(isNew)
    m_dataSource.loadConfig(config);
    m_filterWidget->setVisible(m_dataSource.isFilterShown());
    m_filterWidget->setFilterData(m_dataSource.filterList());
    return true;
}

bool TFMultiCharts::handleResponse(const QJsonValue &data, const QString &text, int flag)
{
    Q_UNUSED(text)
    Q_UNUSED(flag)
    m_d.rowsArrivedAt = QDateTime::currentMSecsSinceEpoch();
    m_d.readyAtArrival = m_pageReady;
    m_dataSource.loadConfigAndData(data);
    if (m_pageReady)
        m_dataSource.slotRefreshChartDaTa();
    updateSettling();
    return true;
}

bool TFMultiCharts::isDataSourceFilter(const QString &name)
{
    return m_dataSource.isFilterLive(name);
}

void TFMultiCharts::setFilterArgs(QMap<QString, QVariant> args)
{
    if (m_filterWidget)
        m_filterWidget->setArgs(args);
}

FilterParam::DataSourceFilter TFMultiCharts::order()
{
    return m_dataSource.order();
}

QList<FilterParam::Cntrl> TFMultiCharts::getCntrls()
{
    return m_filterWidget ? m_filterWidget->getCntrls() : QList<FilterParam::Cntrl>();
}

QList<TFTableModelData::FilterData> TFMultiCharts::filterList()
{
    return m_dataSource.filterList();
}

int TFMultiCharts::viewType()
{
    return ChartView;
}

QString TFMultiCharts::caption()
{
    return m_dataSource.caption();
}

bool TFMultiCharts::isCross()
{
    return m_dataSource.isCross();
}
