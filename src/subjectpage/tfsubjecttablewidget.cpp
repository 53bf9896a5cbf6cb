#include "tfsubjecttablewidget.h"

#include "tfexcelwritter.h"
#include "tfrightcontainer.h"
#include "tfsubjectmainframe.h"
#include "tfxlsxdocument.h"

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

#include <QCoreApplication>
#include <QDebug>
#include <QDesktopServices>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QJsonArray>
#include <QJsonObject>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QProgressDialog>
#include <QStandardPaths>
#include <QThread>
#include <QUrl>
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
    connect(m_filterWidget, QOverload<int, QString>::of(&TFFilterWidget::signalSimpleButtonSaveToExcel), this,
            &TFSubjectTableWidget::exportToExcel);
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

// Export

void TFSubjectTableWidget::requestExportRows(std::function<void(const QList<QList<QVariant>> &)> done,
                                             std::function<void(const QString &)> failed)
{
    if (!m_dm) {
        failed(tr("the view has no service"));
        return;
    }
    // The export always takes every row of the current filters.
    const TFUc::TFPaging paging{true, int(m_paginationBar->currentPage()), int(m_paginationBar->perCount())};
    const TFUc::TFRequestContent content = TFUc::viewDataRequest(viewId(), toParams(params()), filters(), paging);
    m_dm->start(content, [this, done, failed](bool isOk, const QByteArray &data) {
        if (!isOk) {
            qDebug() << "isOk:" << false << data;
            failed(tr("the service did not answer: %1").arg(QString::fromUtf8(data.left(200))));
            return;
        }
        QList<QList<QVariant>> rows;
        if (!m_parser->parseData(data, &rows, m_header)) {
            qWarning() << "parse data failed";
            failed(tr("the service's reply holds no rows"));
            return;
        }
        done(rows);
    });
}

void TFSubjectTableWidget::exportToExcel(int type, const QString &saveType)
{
    Q_UNUSED(saveType)
    requestExportRows(
        [this, type](const QList<QList<QVariant>> &rows) {
            const QString start = QDir(QCoreApplication::applicationDirPath()).filePath(exportFileName());
            if (type != 0) {
                // The filter's misspelt suffix is the program's own.
                const QString path = QFileDialog::getSaveFileName(this, tr("选择文件"), start, tr("Excel (*.xlxs)"));
                if (path.isEmpty())
                    return;
                saveToExcel(path, m_header, rows, this);
            } else {
                saveToExcel(uniqueFileName(start), m_header, rows);
            }
        },
        [](const QString &) {});
}

void TFSubjectTableWidget::exportToFile(const QString &fileName)
{
    if (m_header->leaves().isEmpty()) {
        emit signalExportFinished(false, tr("the view has no table to export"));
        return;
    }
    requestExportRows(
        [this, fileName](const QList<QList<QVariant>> &rows) {
            QString error;
            if (saveWorkbook(fileName, m_header, rows, nullptr, Silent, &error))
                emit signalExportFinished(true, tr("%1 rows written to %2").arg(rows.size()).arg(fileName));
            else
                emit signalExportFinished(false, error);
        },
        [this](const QString &error) { emit signalExportFinished(false, error); });
}

QString TFSubjectTableWidget::exportFileName() const
{
    QString name;
    for (QObject *up = parent(); up; up = up->parent()) {
        if (auto *frame = qobject_cast<TFSubjectMainFrame *>(up)) {
            name = frame->windowTitle();
            break;
        }
    }
    // ":" cannot stand in a file name on the desktop; nor can a folder
    // separator here.
    name.replace(QLatin1Char(':'), QLatin1Char('_'));
    name.replace(QLatin1Char('/'), QLatin1Char('_'));
    if (name.isEmpty())
        name = tr("新建工作簿");
    return name + QStringLiteral(".xlsx");
}

QString TFSubjectTableWidget::defaultSavePath(const QDateTime &now)
{
    // "MM" twice: the second stands where the minutes would be.
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) + QDir::separator()
        + QStringLiteral("新建工作簿_") + now.toString(QStringLiteral("yyyyMMddhhMMss"));
}

QString TFSubjectTableWidget::uniqueFileName(const QString &path)
{
    QString current = path;
    while (QFile::exists(current)) {
        // An older export is overwritten without a word.
        if (QFile::remove(current))
            break;
        // In use: a numbered name. A name that ends with ")" gets "(1)"
        // more, so a becomes a(1) and a(1) becomes a(1)(1); the suffix
        // follows without its dot.
        const QFileInfo info(current);
        const QString base = info.baseName();
        QString next;
        if (base.endsWith(QLatin1Char(')'))) {
            next = base + QStringLiteral("(1)");
        } else {
            const int i = base.lastIndexOf(QLatin1Char('('));
            const int j = base.lastIndexOf(QLatin1Char(')'));
            bool ok = false;
            int number = base.mid(i, j).toInt(&ok, 10);
            if (!ok)
                number = 0;
            next = QStringLiteral("%1(%2)").arg(base.left(i)).arg(number + 1);
        }
        current = info.dir().filePath(next + info.completeSuffix());
    }
    return current;
}

bool TFSubjectTableWidget::saveToExcel(const QString &path, TFTreeStruct *header,
                                       const QList<QList<QVariant>> &rows, QWidget *parent)
{
    return saveWorkbook(path, header, rows, parent, ShowMessage);
}

bool TFSubjectTableWidget::saveToExcel(const QString &path, TFTreeStruct *header,
                                       const QList<QList<QVariant>> &rows)
{
    return saveWorkbook(path, header, rows, nullptr, OpenFile);
}

bool TFSubjectTableWidget::saveWorkbook(QString path, TFTreeStruct *header, const QList<QList<QVariant>> &rows,
                                        QWidget *parent, SaveMode mode, QString *error)
{
    const bool interactive = mode != Silent;
    auto refuse = [&](const QString &text) {
        if (error)
            *error = text;
        if (interactive)
            QMessageBox::warning(parent, tr("保存失败"), text, QMessageBox::Ok);
        else
            qWarning().noquote() << text;
        return false;
    };

    if (path.isEmpty() && interactive) {
        path = QFileDialog::getSaveFileName(nullptr, tr("文件保存"), defaultSavePath(QDateTime::currentDateTime()),
                                            tr("Excel工作簿(*.xlsx)"));
        if (path.isEmpty())
            return refuse(tr("u8用户已取消"));
    }
    if (path.isEmpty())
        return refuse(tr("no file name"));
    if (!path.endsWith(QLatin1String(".xlsx")))
        path += QStringLiteral(".xlsx");

    // A file that exists must take writing; it is not emptied here, so
    // that a failed or cancelled export leaves it as it was.
    if (QFileInfo::exists(path)) {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
            return refuse(interactive ? tr("文件处于占用状态") : tr("cannot write \"%1\": %2").arg(path, file.errorString()));
        file.close();
    }

    TFXlsxDocument doc(path);
    if (!doc.isOpen())
        return refuse(tr("文件无法写入: %1").arg(doc.errorString()));
    if (!TFExcelWritter::writeHeader(doc, header))
        return refuse(tr("u8写入表头失败"));

    // A long table shows its progress, keeps the window painting and can
    // be cancelled; the file appears only when the workbook is complete.
    QPointer<TFSubjectTableWidget> self(this);
    QPointer<QProgressDialog> progress;
    if (interactive && rows.size() >= progressRowCount) {
        progress = new QProgressDialog(tr("正在写入工作簿..."), tr("取消"), 0, rows.size(), this);
        progress->setWindowTitle(tr("导出到 Excel"));
        progress->setWindowModality(Qt::WindowModal);
        progress->setMinimumDuration(0);
        progress->setAutoReset(false);
        progress->setAutoClose(false);
        progress->setValue(0);
    }
    auto cancelled = [&] { return !self || (progress && progress->wasCanceled()); };
    const bool written = TFExcelWritter::writeData(doc, header, rows, [&](int done, int) {
        if (progress)
            progress->setValue(done);   // a modal dialog processes events here
        return !cancelled();
    });
    if (!written) {
        doc.discard();
        const bool stopped = cancelled();
        delete progress;
        if (!self)
            return false;
        return refuse(stopped ? tr("u8用户已取消") : tr("u8写入内容失败"));
    }

    // Packing the workbook takes a while for a long table: it runs beside
    // the event loop while the dialog waits.
    bool finished = false;
    if (progress) {
        progress->setLabelText(tr("正在保存..."));
        progress->setRange(0, 0);
        QEventLoop loop;
        QThread *worker = QThread::create([&doc, &finished] { finished = doc.finish(); });
        QObject::connect(worker, &QThread::finished, &loop, &QEventLoop::quit);
        worker->start();
        loop.exec();
        worker->wait();
        delete worker;
    } else {
        finished = doc.finish();
    }
    const bool stopped = cancelled();
    delete progress;
    if (stopped) {
        doc.discard();
        if (!self)
            return false;
        return refuse(tr("u8用户已取消"));
    }
    if (!finished || !doc.commit())
        return refuse(tr("文件无法写入: %1").arg(doc.errorString()));

    if (mode == ShowMessage)
        QMessageBox::information(parent, tr("保存成功"), tr("文件保存成功"), QMessageBox::Ok);
    else if (mode == OpenFile)
        QDesktopServices::openUrl(QUrl::fromUserInput(path));
    return true;
}
