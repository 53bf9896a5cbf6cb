#include "tfrightcontainer.h"

#include "echarts/tfmulticharts.h"
#include "jsonparser/tfjsonparser.h"
#include "net/tfdm.h"
#include "net/tfuc.h"
#include "tfbaseview.h"
#include "tfmainview.h"
#include "tfsubjectmainframe.h"

#include <QDebug>
#include <QMutex>
#include <QMutexLocker>
#include <QPointer>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {

constexpr int kTabCaptionLength = 10;

TFUc::Params toParams(const QList<FilterParam::DataSourceFilter> &params)
{
    TFUc::Params out;
    for (const FilterParam::DataSourceFilter &param : params)
        out.append(qMakePair(param.key, param.value));
    return out;
}

// Ancestors are known by their class name, so that a container in a
// composite screen finds its frame the same way as one in a page.
QWidget *ancestorNamed(QWidget *widget, const char *className)
{
    for (QWidget *walk = widget ? widget->parentWidget() : nullptr; walk; walk = walk->parentWidget()) {
        if (qstrcmp(walk->metaObject()->className(), className) == 0)
            return walk;
    }
    return nullptr;
}

} // namespace

TFRightContainer::TFRightContainer(QWidget *parent)
    : TFVerticalContainer(parent)
    , m_mainView(new TFMainView(this))
    , m_tabWidget(new QTabWidget(this))
    , m_cornerButton(new QPushButton(m_tabWidget))
    , m_parser(new TFSubject::TFJsonParser(this))
    , m_response(new NtResponse)
    , m_dm(new TFDm(this))
{
    TFTableModelData::registerRowDataType();
    setObjectName(QStringLiteral("rightSubjectContainer"));
    m_mainView->setObjectName(QStringLiteral("mainView"));
    m_tabWidget->setObjectName(QStringLiteral("subViewContainer"));
    m_cornerButton->setObjectName(QStringLiteral("cornerButton"));
    setTitleVisible(true);

    auto *holder = new QWidget(this);
    auto *holderLayout = new QVBoxLayout(holder);
    holderLayout->setContentsMargins(0, 0, 0, 0);
    holderLayout->setSpacing(0);
    holderLayout->addWidget(m_mainView);
    m_mainView->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    addWidget(holder);
    addWidget(m_tabWidget);
    m_tabWidget->hide();
    m_cornerButton->setCheckable(true);
    m_tabWidget->setCornerWidget(m_cornerButton);

    connect(m_mainView, &TFMainView::signalGetSubViewCfg, this, &TFRightContainer::requestChildConfig);
    connect(m_mainView, qOverload<QString, QString>(&TFMainView::sigSectorNumChanged), this,
            qOverload<QString, QString>(&TFRightContainer::sigSectorNumChanged));
    connect(m_mainView, &TFMainView::updateChildren, this, &TFRightContainer::refreshChildren);
    connect(m_mainView, &TFMainView::clearChildren, this, &TFRightContainer::clearChildren);
    connect(m_mainView, &TFMainView::sigRowData, this, &TFRightContainer::slotMainTableItemRowClicked);
    connect(m_cornerButton, &QPushButton::clicked, this, &TFRightContainer::slotHideTab);
}

TFRightContainer::~TFRightContainer()
{
    delete m_dm;
    delete m_response;
}

QMutex *TFRightContainer::childViewMutex()
{
    static QMutex mutex;
    return &mutex;
}

QString TFRightContainer::tabText(const QString &caption)
{
    if (caption.size() <= kTabCaptionLength)
        return caption;
    return caption.left(kTabCaptionLength) + QStringLiteral("...");
}

void TFRightContainer::setMainViewVisible(bool visible)
{
    m_mainViewVisible = visible;
    applySplitterRule();
}

void TFRightContainer::setChildViewsVisible(bool visible)
{
    m_childViewsVisible = visible;
    applySplitterRule();
}

void TFRightContainer::applySplitterRule()
{
    setSizes({m_mainViewVisible ? height() : 1, m_childViewsVisible ? height() : 1});
}

void TFRightContainer::refreshPage(qlonglong obj_vw_id, QString title)
{
    qDebug() << "refresh right container:" << obj_vw_id << " title:" << title;
    m_currentView = -1;
    m_childState.clear();
    m_currentView = obj_vw_id;
    setTitle(title);
    m_tabWidget->hide();
    if (m_tabWidget->count() > 0) {
        m_tabWidget->blockSignals(true);
        while (m_tabWidget->count() > 0) {
            QWidget *page = m_tabWidget->widget(0);
            m_tabWidget->removeTab(0);
            delete page;
        }
        m_tabWidget->blockSignals(false);
    }

    m_mainView->setViewId(obj_vw_id);
    m_mainView->setRequestName(QStringLiteral("reqMainCfg"));
    m_mainView->startLoading();
    const TFUc::TFRequestContent content =
        TFUc::viewConfigRequest(obj_vw_id, toParams(m_mainView->params()), m_mainView->filters());
    // No check that the reply still belongs to the current view: the last reply fills the main view.
    m_dm->start(content, [this](bool isOk, const QByteArray &data) {
        if (!isOk) {
            qDebug() << "get subject config failed:" << data;
            m_mainView->finished();
            return;
        }
        NtResponse response;
        const bool good = TFJSP::parseResponse(QString::fromUtf8(data), response);
        m_mainView->finished();
        if (!good)
            return;
        m_mainView->parseConfig(response.data, true);
        emit signalDataChanged();
    });
}

void TFRightContainer::requestChildConfig(qlonglong objectViewID, const QString &caption, qlonglong pObjViewID)
{
    Q_UNUSED(caption)
    if (m_currentView != pObjViewID)
        return; // a notice of an earlier page
    if (m_childState.contains(objectViewID))
        return; // each child is asked for once per page
    m_childState.insert(objectViewID, false);
    if (m_childViewsVisible)
        m_tabWidget->show();

    const TFUc::TFRequestContent content = TFUc::viewConfigRequest(objectViewID, {}, {});
    m_dm->start(content, [this, objectViewID](bool isOk, const QByteArray &data) {
        NtResponse response;
        if (!isOk || !TFJSP::parseResponse(QString::fromUtf8(data), response))
            return; // the child stays false, and the all-ready step never comes
        {
            QMutexLocker locker(childViewMutex());
            createSubWidgets(objectViewID, response.data);
        }
        emit signalDataChanged();
    });
}

void TFRightContainer::createSubWidgets(qlonglong id, QJsonValue data)
{
    if (data.isNull()) {
        qDebug() << Q_FUNC_INFO << "id: " << id << " no data";
        return;
    }
    if (!m_childState.contains(id))
        return;
    TFBaseView *view = createView(TFMainView::viewKind(data), id, data, m_tabWidget, false);
    if (!view)
        return;
    if (!m_childState.contains(view->viewId())) {
        delete view;
        return;
    }
    const QString caption = view->caption();
    const int index = m_tabWidget->addTab(view, tabText(caption));
    m_tabWidget->setTabToolTip(index, caption);
    m_childState.insert(view->viewId(), true);
    setSizes({300, 200});

    bool allReady = !m_childState.isEmpty();
    for (bool ready : qAsConst(m_childState))
        allReady = allReady && ready;
    if (allReady) {
        // The main table starts only now, so that its first row can fill every tab.
        if (auto *frame = qobject_cast<TFSubjectMainFrame *>(ancestorNamed(this, "TFSubjectMainFrame")))
            frame->blockFilter();
        m_mainView->load(QPair<QString, QVariant>());
    }
}

void TFRightContainer::slotMainTableItemRowClicked(RowData values, bool isClicked)
{
    for (int index = 0; index < m_tabWidget->count(); ++index) {
        auto *view = qobject_cast<TFBaseView *>(m_tabWidget->widget(index));
        if (!view)
            continue;
        const bool chart = view->viewType() == TFBaseView::ChartView;
        if (chart) {
            auto *charts = qobject_cast<TFMultiCharts *>(view);
            if (charts && !charts->isgetchartdata()) {
                // Such a chart shows the main table's rows, and takes no click.
                if (!isClicked) {
                    charts->clear();
                    updateChartUseMainTableData(charts->viewId());
                }
                continue;
            }
        }
        const QString linkText = m_mainView->childLinkText(view->viewId());
        const QList<FilterParam::Cntrl> controls = m_mainView->getCntrls();
        qDebug() << "--slotMainTableItemRowClicked----------->filter:" << linkText;
        view->setChildFilters(controls, values, linkText);
        qDebug() << "----------------------------------------------";
        view->clear();
        view->startLoading();

        const bool cross = view->isCross();
        const int flag = cross ? 2 : 1;
        TFUc::TFPaging paging;
        paging.noPaging = cross || chart;
        paging.page = 1;
        paging.size = 200;
        const TFUc::TFRequestContent content =
            TFUc::viewRequest(view->viewId(), flag, toParams(view->params()), view->filters(), paging);
        QPointer<TFBaseView> sent(view);
        m_dm->start(content, [this, index, flag, sent](bool isOk, const QByteArray &data) {
            if (!isOk)
                return; // the view keeps its loading text
            NtResponse response;
            const bool good = TFJSP::parseResponse(QString::fromUtf8(data), response);
            auto *target = qobject_cast<TFBaseView *>(m_tabWidget->widget(index));
            if (good && target) {
                target->handleResponse(response.data, QString(), flag);
                target->finished();
            } else if (sent) {
                sent->noData();
            }
        });
    }
}

void TFRightContainer::updateChartUseMainTableData(qlonglong chartId)
{
    const QList<QVariantMap> rows = m_mainView->allRows();
    TFBaseView *view = nullptr;
    if (m_mainView->currentViewId() == chartId) {
        view = m_mainView->currentView();
    } else {
        for (int index = 0; index < m_tabWidget->count() && !view; ++index) {
            auto *candidate = qobject_cast<TFBaseView *>(m_tabWidget->widget(index));
            if (candidate && candidate->viewId() == chartId)
                view = candidate;
        }
    }
    if (auto *charts = qobject_cast<TFMultiCharts *>(view))
        charts->setRows(rows);
}

void TFRightContainer::refreshChildren()
{
    if (m_tabWidget->count() == 0)
        return;
    slotMainTableItemRowClicked(m_mainView->firstRow(), false);
}

void TFRightContainer::clearChildren()
{
    for (int index = 0; index < m_tabWidget->count(); ++index) {
        if (auto *view = qobject_cast<TFBaseView *>(m_tabWidget->widget(index)))
            view->clear();
    }
}

void TFRightContainer::slotHideTab(bool checked)
{
    const int barHeight = m_tabWidget->tabBar()->height();
    if (!checked) {
        m_tabHeight = 5 * barHeight;
        m_tabWidget->setMinimumHeight(5 * barHeight);
        m_tabWidget->setMaximumHeight(16777215);
    } else {
        m_tabHeight = m_tabWidget->height();
        m_tabWidget->setMinimumHeight(0);
        m_tabWidget->setMaximumHeight(barHeight);
    }
}
