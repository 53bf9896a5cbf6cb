#pragma once

#include "filterwidget/filterparam.h"
#include "jsonparser/tffilterjsontable.h"

#include <QFrame>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

// The bar of filter controls above a view. In this form it builds no
// controls: it keeps the view's filter rows, answers which keys are
// data-source parameters, and yields no filters, so a view queries with its
// defaults. Its signals are those the views listen to.
class TFFilterWidget : public QFrame
{
    Q_OBJECT
public:
    explicit TFFilterWidget(QWidget *parent = nullptr);

    void setFilterData(const QList<TFTableModelData::FilterData> &rows);
    QList<TFTableModelData::FilterData> filterData() const { return m_rows; }

    // Appends the filters of the controls; without controls nothing.
    void finalFilter(QList<FilterParam::DataSourceFilter> &dataSourceFilters,
                     QList<FilterParam::CustomFilter> &customFilters);
    QList<FilterParam::Cntrl> getCntrls() const;

    // "keywords", and the fields of rows that are parameters of the data
    // source ("1") without being labels.
    bool isDataSourceFilter(const QString &key) const;

    void setUnitText(const QString &text);
    QString unitText() const { return m_unitText; }

    // Arguments shared by the page; kept for the controls.
    void setArgs(const QMap<QString, QVariant> &args) { m_args = args; }
    QMap<QString, QVariant> args() const { return m_args; }

    void reset();

signals:
    void sigGetDataButtonClicked(QString Filter);
    void signalSimpleButtonSaveToExcel(int type, QString saveType);
    void signalSimpleButtonSaveToExcel(int type);
    void signalSimpleButtonSaveToExcel();
    void signalSortChanged();
    void signalComboBoxChanged(int unitCode, int unitCategroy);

public slots:
    void slotSimpleButtonGetDataClicked();
    void slotSimpleButtonSaveToExcel(int type);

private:
    QList<TFTableModelData::FilterData> m_rows;
    QMap<QString, QVariant> m_args;
    QString m_unitText;
};
