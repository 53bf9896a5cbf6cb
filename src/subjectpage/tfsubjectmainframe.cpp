#include "tfsubjectmainframe.h"

#include "filterwidget/tfcacheconfig.h"
#include "net/tfdm.h"
#include "net/tfjsp.h"
#include "net/tfuc.h"
#include "tfmenucfg.h"
#include "tfrightcontainer.h"
#include "tftreewidgetcontainer.h"

#include "tfcore/tfcore.h"
#include "tfcore/tfwebview.h"

#include <QCoreApplication>
#include <QDebug>
#include <QGridLayout>
#include <QJsonArray>
#include <QLabel>
#include <QMovie>
#include <QResizeEvent>
#include <QSplitter>
#include <QStackedWidget>

namespace {
constexpr int kStockTopic = 2;
constexpr int kBlockSecurityType = 10;
}

void TFSubjectMainFrame::Ui::setupUi(QFrame *frame)
{
    if (frame->objectName().isEmpty())
        frame->setObjectName(QStringLiteral("TFSubjectMainFrame"));
    frame->resize(528, 405);
    gridLayout = new QGridLayout(frame);
    gridLayout->setObjectName(QStringLiteral("gridLayout"));
    gridLayout->setSpacing(1);
    gridLayout->setContentsMargins(1, 1, 1, 1);
    splitter = new QSplitter(frame);
    splitter->setObjectName(QStringLiteral("splitter"));
    splitter->setOrientation(Qt::Horizontal);
    leftContainer = new TFTreeWidgetContainer(splitter);
    leftContainer->setObjectName(QStringLiteral("leftContainer"));
    splitter->addWidget(leftContainer);
    rightContainer = new QStackedWidget(splitter);
    rightContainer->setObjectName(QStringLiteral("rightContainer"));
    splitter->addWidget(rightContainer);
    gridLayout->addWidget(splitter, 0, 0, 1, 1);
    frame->setWindowTitle(QCoreApplication::translate("TFSubjectMainFrame", "Frame"));
    QMetaObject::connectSlotsByName(frame);
}

TFSubjectMainFrame::TFSubjectMainFrame(QWidget *parent)
    : QFrame(parent)
{
    m_ui.setupUi(this);
    m_loadingLabel = new QLabel(this);
    m_loadingLabel->hide();
    m_dm = new TFDm(this);
}

TFSubjectMainFrame::~TFSubjectMainFrame()
{
    delete m_dm;
}

void TFSubjectMainFrame::setCaption(const QString &caption)
{
    if (m_caption != caption)
        m_caption = caption;
}

void TFSubjectMainFrame::setNodeCode(const QString &nodeCode)
{
    if (m_nodeCode != nodeCode)
        m_nodeCode = nodeCode;
}

void TFSubjectMainFrame::setObjVwId(const QString &objVwId)
{
    if (m_objVwId != objVwId)
        m_objVwId = objVwId;
}

void TFSubjectMainFrame::setPNodeCode(int pNodeCode)
{
    if (m_pNodeCode != pNodeCode)
        m_pNodeCode = pNodeCode;
}

void TFSubjectMainFrame::setF9Args(const QMap<QString, QVariant> &args)
{
    if (m_f9Args != args)
        m_f9Args = args;
}

QPair<QString, QVariant> TFSubjectMainFrame::blockFilter() const
{
    return m_ui.leftContainer->blockFilter();
}

void TFSubjectMainFrame::refresh()
{
    // The replies come on this thread, so they cannot overtake what follows.
    if (m_pNodeCode == kStockTopic)
        requestBlockRows();
    requestNavigation();

    if (m_rightContainer && m_webView)
        return;

    m_ui.splitter->setObjectName(QStringLiteral("mainLayout"));
    m_rightContainer = new TFRightContainer(this);
    m_webView = new TFWebView();
    m_webView->init(QUrl(), QVariant(QString()));

    auto *movie = new QMovie(TFCore::instance()->getCurrentSkinPath(QStringLiteral("subject/loading.gif")),
                             QByteArray(), m_loadingLabel);
    m_loadingLabel->setMovie(movie);
    m_loadingLabel->resize(32, 32);
    movie->start();
    m_loadingLabel->show();
    m_loadingLabel->raise();

    m_ui.splitter->setChildrenCollapsible(false);
    m_ui.splitter->setHandleWidth(2);
    m_ui.splitter->setContentsMargins(3, 3, 3, 3);
    m_ui.rightContainer->addWidget(m_rightContainer);
    m_ui.rightContainer->addWidget(m_webView);
    m_ui.splitter->setSizes({200, 1200});
    m_ui.gridLayout->setContentsMargins(0, 0, 0, 0);
    m_ui.gridLayout->setSpacing(0);

    connect(m_ui.leftContainer, &TFTreeWidgetContainer::groupChanged, this, [this](const QString &text) {
        setWindowTitle(text.isEmpty() ? m_caption : m_caption + QLatin1Char(':') + text);
    });
    connect(m_rightContainer, qOverload<QString, QString>(&TFRightContainer::sigSectorNumChanged), this,
            [this](const QString &sectorNum, const QString &rootItem) {
                m_ui.leftContainer->setRootSector(rootItem);
                m_ui.leftContainer->slotSetSector(sectorNum);
            });
    connect(m_ui.leftContainer, &TFTreeWidgetContainer::signalItemClicked, this,
            &TFSubjectMainFrame::onItemClicked);
}

void TFSubjectMainFrame::onItemClicked(qlonglong id, const QString &title, const QString &url)
{
    if (!url.isEmpty()) {
        m_ui.rightContainer->setCurrentIndex(1);
        m_webView->refresh(QUrl::fromUserInput(url), QVariant());
    } else {
        m_ui.rightContainer->setCurrentIndex(0);
        m_rightContainer->refreshPage(id, title);
    }
}

void TFSubjectMainFrame::requestBlockRows()
{
    m_dm->start(TFUc::blockRowsRequest(kBlockSecurityType), [this](bool isOk, const QByteArray &data) {
        if (!m_ui.leftContainer || !isOk)
            return;
        NtResponse response;
        if (TFJSP::parseResponse(QString::fromUtf8(data), response))
            m_ui.leftContainer->loadBlockTree(response.data);
    });
}

void TFSubjectMainFrame::requestNavigation()
{
    m_dm->start(TFUc::navigationRowsRequest(m_pNodeCode), [this](bool isOk, const QByteArray &data) {
        onNavigationReply(isOk, data);
    });
}

void TFSubjectMainFrame::onNavigationReply(bool isOk, const QByteArray &data)
{
    // A failed navigation leaves the loading image spinning, and says so only in the log.
    if (!isOk)
        return;
    NtResponse response;
    if (!TFJSP::parseResponse(QString::fromUtf8(data), response))
        return;

    m_ui.leftContainer->setTitle(m_caption);
    bool loaded = true;
    if (!m_nodeCode.isEmpty()) {
        loaded = m_ui.leftContainer->loadMainTreeByCode(m_nodeCode, response.data, m_pNodeCode, m_caption);
    } else if (!m_objVwId.isEmpty()) {
        loaded = m_ui.leftContainer->loadMainTreeByName(TFMenuCfg::instance()->itemOfView(m_objVwId),
                                                        response.data, m_pNodeCode, m_caption);
    }
    if (!loaded)
        return;

    m_ui.leftContainer->loadBlockTree(m_blockValue);
    requestConstants(response);
    m_loadingLabel->hide();
}

void TFSubjectMainFrame::requestConstants(const NtResponse &navigation)
{
    const QJsonValue rows = navigation.data;
    m_dm->start(TFUc::constantsRequest(), [rows](bool isOk, const QByteArray &data) {
        // The reply only opens the gate: the table is filled from the rows
        // of the navigation reply the request was handed.
        NtResponse gate;
        if (!isOk || !TFJSP::parseResponse(QString::fromUtf8(data), gate))
            return;
        TFCacheConfig::instance()->initWith(rows);
    });
}

void TFSubjectMainFrame::resizeEvent(QResizeEvent *event)
{
    if (event->size().isValid()) {
        m_loadingLabel->move(int((width() - m_loadingLabel->width()) * 0.5),
                             int((height() - m_loadingLabel->height()) * 0.5));
    }
    QFrame::resizeEvent(event);
}
