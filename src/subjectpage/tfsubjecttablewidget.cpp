#include "tfsubjecttablewidget.h"

#include "tfrightcontainer.h"
#include "tfsubjectmainframe.h"

#include "filterwidget/tffilterwidget.h"
#include "jsonparser/tfjsonparser.h"
#include "jsonparser/tfviewconfigtable.h"
#include "mulittable/tfheaderdatastruct.h"
#include "mulittable/tfheaderunit.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "mulittable/tfsujecttableview.h"
#include "net/tfdm.h"
#include "net/tfjsp.h"
#include "pagination/tfpaginationbar.h"

#include "tfcore/invokerbase.h"
#include "tfcore/tfcore.h"

#include <QDebug>
#include <QHBoxLayout>
#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QMessageBox>
#include <QVBoxLayout>

namespace {

template<typename T>
T *ancestorOf(const QObject *object)
{
    for (QObject *up = object ? object->parent() : nullptr; up; up = up->parent()) {
        if (T *found = qobject_cast<T *>(up))
            return found;
    }
    return nullptr;
}

} // namespace

TFSubjectTableWidget::TFSubjectTableWidget(QWidget *parent, bool isMain)
    : TFBaseView(parent)
    , m_isMain(isMain)
    , m_filterBarVisible(isMain)
    , m_layout(new QVBoxLayout(this))
    , m_filterWidget(new TFFilterWidget(this))
    , m_pageLine(new QFrame(this))
    , m_timeLabel(new QLabel(m_pageLine))
    , m_paginationBar(new TFPaginationBar(m_pageLine))
    , m_header(new TFTreeStruct(QString()))
    , m_parser(new TFSubject::TFJsonParser(this))
    , m_gridHolder(new QWidget(this))
    , m_dm(new TFDm(this))
{
    TFTableModelData::registerRowDataType();
    m_timeLabel->setAlignment(Qt::AlignCenter);
    createConnections();
}

TFSubjectTableWidget::~TFSubjectTableWidget()
{
    // The grid's model reads the header; both go before the tree.
    delete m_gridHolder;
    m_gridHolder = nullptr;
    delete m_dm;
    delete m_header;
}

void TFSubjectTableWidget::createConnections()
{
    connect(m_parser, &TFSubject::TFJsonParser::signalSubTableJsonData, this,
            [this](qint64 id, const QString &caption) { emit signalGetSubViewCfg(id, caption, viewId()); });
    connect(m_filterWidget, &TFFilterWidget::sigGetDataButtonClicked, this, &TFSubjectTableWidget::queryData);
    connect(m_paginationBar, &TFPaginationBar::signalCurrentPageChanged, this,
            [this](int page, int size) { pageRequest(page, size, false); });
    // The export of a table to a workbook comes with the workbook writer;
    // until then its command reaches no flow.
}

void TFSubjectTableWidget::initLayout()
{
    m_filterWidget->setObjectName(QStringLiteral("filterWidget"));
    m_pageLine->setObjectName(QStringLiteral("pageBar"));
    m_timeLabel->setObjectName(QStringLiteral("TimeSpendLabel"));

    auto *pageLayout = new QHBoxLayout(m_pageLine);
    pageLayout->setSpacing(0);
    pageLayout->setContentsMargins(0, 0, 0, 0);
    pageLayout->addWidget(m_timeLabel);
    pageLayout->addStretch(10);
    pageLayout->addWidget(m_paginationBar);

    m_filterWidget->setVisible(m_isMain && m_filterBarVisible);

    m_layout->setSpacing(0);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->addWidget(m_filterWidget);
    m_layout->addWidget(m_gridHolder, 1);
    m_layout->addWidget(m_pageLine);
}

void TFSubjectTableWidget::setFilterBarVisible(bool visible)
{
    if (m_filterBarVisible == visible)
        return;
    m_filterBarVisible = visible;
    m_filterWidget->setVisible(visible);
}

void TFSubjectTableWidget::setPageBarVisible(bool visible)
{
    if (m_pageBarVisible == visible)
        return;
    m_pageBarVisible = visible;
    m_pageLine->setVisible(visible);
}

TFSubjectTableModel *TFSubjectTableWidget::model() const
{
    return m_grid ? m_grid->model() : nullptr;
}

// Loading states

void TFSubjectTableWidget::startLoading()
{
    m_startTime = QTime::currentTime();
    m_timeLabel->setText(tr("加载中... (起始时间: %1)").arg(m_startTime.toString(QStringLiteral("hh:mm:ss zzz"))));
    setCursor(Qt::WaitCursor);
}

void TFSubjectTableWidget::noData()
{
    m_timeLabel->show();
    m_timeLabel->setText(tr("无数据!"));
    setCursor(Qt::ArrowCursor);
}

void TFSubjectTableWidget::finished()
{
    m_timeLabel->show();
    const double seconds = m_startTime.msecsTo(QTime::currentTime()) / 1000.0;
    m_timeLabel->setText(tr("耗时 %1 秒").arg(seconds, 0, 'f', 4));
    setCursor(Qt::ArrowCursor);
}

// View operations

void TFSubjectTableWidget::clear()
{
    clearParserData();
    if (m_grid) {
        if (TFSubjectTableModel *model = m_grid->model())
            model->clear();
    }
}

void TFSubjectTableWidget::clearParserData()
{
    // A page without rows replaces the parser's rows by none.
    m_parser->parseData(QJsonObject{{QStringLiteral("Data"), QJsonArray()}});
}

bool TFSubjectTableWidget::isDataSourceFilter(const QString &name)
{
    return m_filterWidget ? m_filterWidget->isDataSourceFilter(name) : false;
}

void TFSubjectTableWidget::setFilterArgs(QMap<QString, QVariant> args)
{
    m_filterWidget->setArgs(args);
}

void TFSubjectTableWidget::reset(qint64 viewId)
{
    m_filterWidget->reset();
    setViewId(viewId);
    m_timeLabel->show();
    m_paginationBar->reset();
    clear();
    startLoading();
}

FilterParam::DataSourceFilter TFSubjectTableWidget::order()
{
    if (!m_parser)
        return FilterParam::DataSourceFilter();
    const QPair<QString, QVariant> pair = m_parser->orderProperty();
    return FilterParam::DataSourceFilter{pair.first, pair.second};
}

QList<FilterParam::Cntrl> TFSubjectTableWidget::getCntrls()
{
    return m_filterWidget->getCntrls();
}

QList<TFTableModelData::FilterData> TFSubjectTableWidget::filterList()
{
    return m_parser->filterData();
}

QString TFSubjectTableWidget::caption()
{
    return m_parser->objectViewName();
}

void TFSubjectTableWidget::setChildFilters(const QList<FilterParam::Cntrl> &controls, const RowData &row,
                                           const QString &linkText)
{
    if (!m_isMain)
        TFBaseView::setChildFilters(controls, row, linkText);
}

bool TFSubjectTableWidget::isCross()
{
    return m_parser->isCross();
}

bool TFSubjectTableWidget::isOrder() const
{
    const TFViewConfigTable *view = m_parser->viewConfigTable();
    return view && view->isOrder();
}

// Flows

void TFSubjectTableWidget::updateFilters(QPair<QString, QVariant> pair)
{
    if (pair.first.isNull() || pair.second.isNull()) {
        if (TFSubjectMainFrame *frame = ancestorOf<TFSubjectMainFrame>(this))
            pair = frame->blockFilter();
    }
    QList<FilterParam::DataSourceFilter> params;
    QList<FilterParam::CustomFilter> filters;
    m_filterWidget->finalFilter(params, filters);
    params.append(FilterParam::DataSourceFilter{pair.first, pair.second});
    params.append(order());
    setParams(params);
    setFilters(filters);
}

void TFSubjectTableWidget::loadData(const QPair<QString, QVariant> &pair)
{
    updateFilters(pair);
    if (isCross())
        wholeSetRequest();
    else
        pageRequest(int(m_paginationBar->currentPage()), int(m_paginationBar->perCount()), false);
}

void TFSubjectTableWidget::queryData()
{
    m_paginationBar->reset();
    clear();
    startLoading();
    updateFilters(QPair<QString, QVariant>());
    pageRequest(int(m_paginationBar->currentPage()), int(m_paginationBar->perCount()), false);
}

static TFUc::Params toParams(const QList<FilterParam::DataSourceFilter> &list)
{
    TFUc::Params params;
    for (const FilterParam::DataSourceFilter &filter : list)
        params.append({filter.key, filter.value});
    return params;
}

bool TFSubjectTableWidget::sameContent(const TFUc::TFRequestContent &a, const TFUc::TFRequestContent &b)
{
    return a.url == b.url && a.body == b.body && a.reserved == b.reserved && a.headers == b.headers;
}

void TFSubjectTableWidget::pageRequest(int page, int size, bool noPaging)
{
    clearParserData();
    startLoading();
    if (!m_dm)
        return;
    const TFUc::TFRequestContent content =
        TFUc::viewDataRequest(viewId(), toParams(params()), filters(), TFUc::TFPaging{noPaging, page, size});
    m_dm->start(content, [this](bool isOk, const QByteArray &data) {
        if (!isOk) {
            noData();
            return;
        }
        // An identical request whose reply is already on screen: this reply
        // brings nothing new.
        if (sameContent(m_sentContent, m_appliedContent) && !m_parser->dataMaps().isEmpty()) {
            finished();
            return;
        }
        m_appliedContent = m_sentContent;
        NtResponse response;
        if (!TFJSP::parseResponse(QString::fromUtf8(data), response) || !isCurrent()) {
            noData();
            return;
        }
        handleResponse(response.data, QString(), 1);
    });
    m_sentContent = content;
}

void TFSubjectTableWidget::wholeSetRequest()
{
    clear();
    startLoading();
    if (!m_dm)
        return;
    const TFUc::TFRequestContent content = TFUc::wholeDataSetRequest(viewId(), toParams(params()), filters());
    m_dm->start(content, [this](bool isOk, const QByteArray &data) {
        NtResponse response;
        if (isOk && TFJSP::parseResponse(QString::fromUtf8(data), response) && isCurrent())
            handleResponse(response.data, QString(), 2);
    });
}

bool TFSubjectTableWidget::isCurrent()
{
    if (m_isMain) {
        const TFRightContainer *container = ancestorOf<TFRightContainer>(this);
        if (container && container->currentView() != viewId())
            return false;
    } else {
        return true;
    }
    if (isOrder())
        emit clearChildren();
    return true;
}

bool TFSubjectTableWidget::parseConfig(const QJsonValue &config, bool isNew)
{
    m_header->clearChildren();
    if (!m_parser->parseConfig(config, m_header)) {
        qWarning() << "json parse error";
        finished();
        return false;
    }
    if (isNew) {
        m_filterWidget->setFilterData(m_parser->filterData());
        if (m_filterBarVisible)
            m_filterWidget->show();
        m_total = 0;
        m_paginationBar->reset();
    }
    // A cross view builds its header only from a reply that has data.
    if (!isCross() || !isNew)
        m_header->showBands();
    if (!m_isMain || !isNew || isOrder())
        return true;

    clear();
    updateFilters(QPair<QString, QVariant>());
    const TFViewConfigTable *view = m_parser->viewConfigTable();
    const QString sectorNum = view ? view->sectorNum() : QString();
    const QString rootItem = view ? view->rootSectorNum() : QString();
    if (!sectorNum.isEmpty())
        emit sigSectorNumChanged(sectorNum, rootItem);

    if (isCross())
        wholeSetRequest();
    else
        pageRequest(int(m_paginationBar->currentPage()), int(m_paginationBar->perCount()), false);
    return true;
}

bool TFSubjectTableWidget::handleResponse(const QJsonValue &data, const QString &text, int flag)
{
    Q_UNUSED(text)
    bool ok = false;
    switch (flag) {
    case 0:
        if (!m_isMain) {
            m_timeLabel->show();
            return true;
        }
        ok = parseConfig(data, true);
        break;
    case 1:
        ok = parseData(data);
        break;
    case 2:
        parseConfig(data, false);
        ok = parseData(data);
        break;
    default:
        noData();
        return false;
    }
    if (!ok) {
        noData();
        return false;
    }
    m_timeLabel->show();
    if (flag == 0)
        return true;
    finished();
    if (m_isMain)
        emit updateChildren();
    return true;
}

bool TFSubjectTableWidget::parseData(const QJsonValue &json)
{
    auto *grid = new TFSujectTableView;
    auto *model = new TFSubjectTableModel;
    // The model has no parent; it goes with the grid that shows it.
    connect(grid, &QObject::destroyed, model, &QObject::deleteLater);
    m_grid = grid;

    qDebug() << "mMultiHeaderData.size() : " << m_header->leaves().size();
    model->setHeader(m_header);

    if (m_isMain) {
        connect(grid, &TFSujectTableView::clicked, this, [this, model](int row) {
            if (row < 0)
                return; // no row of the model: nothing to carry to the child views
            const RowData values = model->data(model->index(row, 0), Qt::UserRole + 11).value<RowData>();
            emit sigRowData(values, true);
        });
    }
    connect(m_filterWidget, &TFFilterWidget::signalComboBoxChanged, grid,
            [this, grid, model](int unitCode, int unitCategory) {
                const QString name = unitNameOfCode(unitCode);
                const int exponent = unitExponentOfCode(unitCode);
                m_header->updateUnit(name, unitCategory);
                model->setHeader(m_header);
                const QList<HeaderFieldInfo *> records = m_header->leafRecords();
                grid->applyColumnSettings(records);
                qDeleteAll(records);
                model->setUnit(exponent, unitCategory);
            });
    connect(grid, &TFSujectTableView::linkActivated, this, [](const QString &link) {
        if (link.isEmpty())
            return;
        if (QWidget *window = TFCore::instance()->mainWindow()) {
            InvokerBase invoker;
            invoker.arg<QString>(link, "QString");
            invoker.invoke(window, "openStringUrl");
        }
    });

    if (!m_gridHolder->layout()) {
        auto *holderLayout = new QVBoxLayout(m_gridHolder);
        holderLayout->setContentsMargins(0, 0, 0, 0);
    }
    QLayout *holderLayout = m_gridHolder->layout();
    if (QLayoutItem *item = holderLayout->takeAt(0)) {
        if (QWidget *old = item->widget())
            old->deleteLater();
        delete item;
    }
    holderLayout->addWidget(grid);

    if (!m_parser->parseData(json)) {
        m_grid = nullptr;
        return false;
    }
    m_filterWidget->setUnitText(m_header->firstUnit());
    model->setRows(m_parser->rows());
    grid->setModel(model, false);

    const int frozen = m_parser->frozenCount();
    if (m_grid && frozen >= 1 && frozen < model->columnCount())
        m_grid->setFrozenCount(frozen);
    else
        qWarning() << "frozen count is invaild:" << frozen;

    if (m_parser->isGroup()) {
        grid->setGroupColumn(-1);
        grid->expandAll();
    }
    const QString vGridField = m_parser->vGridColHeaderField();
    if (!vGridField.isEmpty())
        grid->setVGridHeader(vGridField);
    grid->setColumnsAlignment(Qt::AlignHCenter | Qt::AlignVCenter);

    setDataCount(m_parser->rowCount(), m_parser->pageIndex(), m_parser->pageSize());
    return true;
}

void TFSubjectTableWidget::setDataCount(int total, int pageIndex, int pageSize)
{
    qDebug() << "===>total cnt:" << total;
    m_total = total;
    const bool blocked = m_paginationBar->blockSignals(true);
    m_paginationBar->reset();
    m_paginationBar->setTotalCount(total);
    m_paginationBar->setCurrentPage(pageIndex);
    m_paginationBar->setPerCnt(pageSize);
    m_paginationBar->blockSignals(blocked);
}

void TFSubjectTableWidget::showMessage(QString errorMsg, QString link)
{
    QMessageBox box(this);
    box.setFixedWidth(300);
    box.setWindowTitle(errorMsg);
    box.setText(link);
    box.exec();
}
