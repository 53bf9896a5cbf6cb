#include "tfmainview.h"

#include "echarts/tfmulticharts.h"
#include "jsonparser/tfjsonparser.h"
#include "mulittable/tfsubjecttablemodel.h"
#include "net/tfuc.h"
#include "tfbaseview.h"
#include "tfsubjecttablewidget.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonObject>

namespace {

constexpr int kTable = 0;
constexpr int kChart = 1;

} // namespace

TFBaseView *createView(int kind, qint64 viewId, const QJsonValue &config, QWidget *parent, bool isMain)
{
    TFBaseView *view = nullptr;
    if (kind == kChart) {
        view = new TFMultiCharts(parent);
    } else if (kind == kTable) {
        auto *table = new TFSubjectTableWidget(parent, isMain);
        table->initLayout();
        table->blockSignals(true);
        view = table;
    } else {
        return nullptr;
    }
    view->setViewId(viewId);
    view->parseConfig(config, true);
    return view;
}

TFMainView::TFMainView(QWidget *parent)
    : QStackedWidget(parent)
{
}

int TFMainView::viewKind(const QJsonValue &config)
{
    const QJsonArray rows = config.toObject().value(QStringLiteral("View_Config")).toArray();
    const TFUc::TFViewProperties properties = TFUc::readViewProperties(rows);
    return properties.ObjViewType == QLatin1String("ViewDataChart") ? kChart : kTable;
}

int TFMainView::addView(int kind)
{
    TFBaseView *view = nullptr;
    if (kind == kTable) {
        auto *table = new TFSubjectTableWidget(this, true);
        table->initLayout();
        connect(table, &TFSubjectTableWidget::sigRowData, this, &TFMainView::sigRowData);
        connect(table, qOverload<QString, QString>(&TFSubjectTableWidget::sigSectorNumChanged), this,
                qOverload<QString, QString>(&TFMainView::sigSectorNumChanged));
        connect(table, &TFSubjectTableWidget::signalGetSubViewCfg, this, &TFMainView::signalGetSubViewCfg);
        connect(table, &TFSubjectTableWidget::updateChildren, this, &TFMainView::updateChildren);
        connect(table, &TFSubjectTableWidget::clearChildren, this, &TFMainView::clearChildren);
        connect(table, &TFSubjectTableWidget::signalCurrentPageChanged, this, &TFMainView::signalCurrentPageChanged);
        view = table;
    } else if (kind == kChart) {
        view = new TFMultiCharts;
    } else {
        return -1;
    }
    m_kinds.append(kind);
    return addWidget(view);
}

void TFMainView::parseConfig(const QJsonValue &config, bool isNew)
{
    const int kind = viewKind(config);
    int index = m_kinds.indexOf(kind);
    if (index < 0)
        index = addView(kind);
    // A second page of the same kind reuses the widget; reset and load prepare it anew.
    auto *view = qobject_cast<TFBaseView *>(widget(index));
    if (view) {
        setCurrentIndex(index);
        view->setViewId(m_viewId);
        view->reset(m_viewId);
        view->parseConfig(config, isNew);
        if (auto *chart = qobject_cast<TFMultiCharts *>(view))
            chart->requestData();
    }
    qDebug() << "main view size:" << size();
}

void TFMainView::setViewId(qint64 viewId)
{
    if (TFSubjectTableWidget *table = currentTable())
        table->reset(viewId);
    m_viewId = viewId;
}

void TFMainView::setFilterWidgetVisible(bool visible)
{
    if (TFSubjectTableWidget *table = currentTable())
        table->setFilterBarVisible(visible);
}

void TFMainView::setPageBarVisible(bool visible)
{
    if (TFSubjectTableWidget *table = currentTable())
        table->setPageBarVisible(visible);
}

bool TFMainView::isFilterWidgetVisible(bool fallback) const
{
    TFSubjectTableWidget *table = currentTable();
    return table ? table->isFilterBarVisible() : fallback;
}

bool TFMainView::isPageBarVisible(bool fallback) const
{
    TFSubjectTableWidget *table = currentTable();
    return table ? table->isPageBarVisible() : fallback;
}

void TFMainView::setRequestName(const QString &name)
{
    if (TFBaseView *view = currentView())
        view->setRequestName(name);
}

void TFMainView::startLoading()
{
    if (TFBaseView *view = currentView())
        view->startLoading();
}

void TFMainView::finished()
{
    if (TFBaseView *view = currentView())
        view->finished();
}

QList<FilterParam::CustomFilter> TFMainView::filters() const
{
    TFBaseView *view = currentView();
    return view ? view->filters() : QList<FilterParam::CustomFilter>();
}

QList<FilterParam::DataSourceFilter> TFMainView::params() const
{
    TFBaseView *view = currentView();
    return view ? view->params() : QList<FilterParam::DataSourceFilter>();
}

QList<FilterParam::Cntrl> TFMainView::getCntrls() const
{
    TFBaseView *view = currentView();
    return view ? view->getCntrls() : QList<FilterParam::Cntrl>();
}

QString TFMainView::childLinkText(qint64 childViewId) const
{
    TFSubjectTableWidget *table = currentTable();
    return table && table->parser() ? table->parser()->childViewParams(childViewId) : QString();
}

RowData TFMainView::firstRow() const
{
    TFSubjectTableWidget *table = currentTable();
    QAbstractItemModel *model = table ? table->model() : nullptr;
    if (!model || model->rowCount() == 0)
        return RowData();
    return model->index(0, 0).data(TFSubjectTableModel::RowDataRole).value<RowData>();
}

QList<QVariantMap> TFMainView::allRows() const
{
    QList<QVariantMap> rows;
    TFSubjectTableWidget *table = currentTable();
    QAbstractItemModel *model = table ? table->model() : nullptr;
    if (!model)
        return rows;
    for (int row = 0; row < model->rowCount(); ++row) {
        QVariantMap map;
        const RowData cells = model->index(row, 0).data(TFSubjectTableModel::RowDataRole).value<RowData>();
        for (const TFTableModelData::tagCellValue &cell : cells)
            map.insert(cell.fieldName, cell.value); // a later cell of the same name wins
        rows.append(map);
    }
    return rows;
}

void TFMainView::load(const QPair<QString, QVariant> &pair)
{
    if (TFSubjectTableWidget *table = currentTable())
        table->loadData(pair);
}

TFBaseView *TFMainView::currentView() const
{
    return qobject_cast<TFBaseView *>(currentWidget());
}

qint64 TFMainView::currentViewId() const
{
    TFBaseView *view = currentView();
    return view ? view->viewId() : -1;
}

TFSubjectTableWidget *TFMainView::currentTable() const
{
    return qobject_cast<TFSubjectTableWidget *>(currentWidget());
}
