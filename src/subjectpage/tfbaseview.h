#pragma once

#include "filterwidget/filterparam.h"
#include "jsonparser/tffilterjsontable.h"
#include "jsonparser/tftablemodeldata.h"

#include <QFrame>
#include <QJsonValue>
#include <QList>
#include <QMap>
#include <QString>
#include <QTime>
#include <QVariant>

// The common base of the two kinds of view, table and chart: what a view is
// asked for (its identifier and the filters and parameters of its next
// request), and the operations both kinds offer.
class TFBaseView : public QFrame
{
    Q_OBJECT
public:
    enum ViewKind { TableView = 0, ChartView = 1 };

    explicit TFBaseView(QWidget *parent = nullptr);
    ~TFBaseView() override;

    qint64 viewId() const { return m_viewId; }
    void setViewId(qint64 viewId) { m_viewId = viewId; }

    QString requestName() const { return m_requestName; }
    void setRequestName(const QString &name) { m_requestName = name; }

    QList<FilterParam::CustomFilter> filters() const { return m_filters; }
    void setFilters(const QList<FilterParam::CustomFilter> &filters) { m_filters = filters; }
    QList<FilterParam::DataSourceFilter> params() const { return m_params; }
    void setParams(const QList<FilterParam::DataSourceFilter> &params) { m_params = params; }

public slots:
    virtual void clear() = 0;
    virtual bool parseConfig(const QJsonValue &config, bool isNew) = 0;
    virtual bool handleResponse(const QJsonValue &data, const QString &text, int flag) = 0;
    virtual bool isDataSourceFilter(const QString &name) = 0;
    virtual void setFilterArgs(QMap<QString, QVariant> args) = 0;
    virtual void reset(qint64 viewId);
    virtual void startLoading();
    virtual void noData();
    virtual void finished();
    virtual FilterParam::DataSourceFilter order();
    virtual QList<FilterParam::Cntrl> getCntrls() = 0;
    virtual QList<TFTableModelData::FilterData> filterList() = 0;
    virtual int viewType();
    virtual QString caption() = 0;
    virtual QTime startTime();
    // Fills the parameters and filters of a child view from the main
    // view's controls and the selected row, through the link text.
    virtual void setChildFilters(const QList<FilterParam::Cntrl> &controls, const RowData &row,
                                 const QString &linkText);
    virtual bool isCross() = 0;

protected:
    void addParam(const FilterParam::Cntrl &control);
    void addFilter(const FilterParam::Cntrl &control, const QString &paramName = QString());

private:
    qint64 m_viewId = -1;
    QString m_spareText;
    QString m_requestName;
    QList<FilterParam::CustomFilter> m_filters;
    QList<FilterParam::DataSourceFilter> m_params;
};
