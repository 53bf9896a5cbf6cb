#pragma once

#include "filterwidget/filterparam.h"
#include "jsonparser/tffilterjsontable.h"

#include <QFrame>
#include <QList>
#include <QMap>
#include <QPointer>
#include <QString>
#include <QVariant>

class FlowLayout;
class TFBaseFilterWidget;
class TFCustomMath;

// The bar of filter controls above a view. It makes one control per
// configuration row and, when the view is about to ask for rows, turns the
// controls' state into the request's top-level keys (data-source filters)
// and the terms of its filter expression (custom filters).
class TFFilterWidget : public QFrame
{
    Q_OBJECT
public:
    explicit TFFilterWidget(QWidget *parent = nullptr);
    ~TFFilterWidget() override;

    // Builds the bar anew: earlier controls, and what the user chose in
    // them, are gone.
    void setFilterData(const QList<TFTableModelData::FilterData> &rows);
    QList<TFTableModelData::FilterData> filterData() const { return m_rows; }

    // Appends the current filters to the two lists; neither is cleared.
    void finalFilter(QList<FilterParam::DataSourceFilter> &dataSourceFilters,
                     QList<FilterParam::CustomFilter> &customFilters);
    // A hidden F9 control takes the page's F9 argument of its key, when it
    // has text.
    void updateF9Filters(FilterParam::Cntrl &cntrl);
    // What every control reports, in bar order, with dynamic defaults
    // "=$name([Caption])" resolved; controls without a key are left out.
    QList<FilterParam::Cntrl> getCntrls() const;

    // "keywords", and the fields of rows that are parameters of the data
    // source ("1") without being labels.
    bool isDataSourceFilter(const QString &key) const;

    // Shows the unit in the first control named "UnitFactorCombobox".
    void setUnitText(const QString &text);

    QList<TFBaseFilterWidget *> controls() const { return m_controls; }

    // Arguments the page hands to its views; kept for the controls.
    void setArgs(const QMap<QString, QVariant> &args) { m_args = args; }
    QMap<QString, QVariant> args() const { return m_args; }

    // The object whose property "dynamicArgs" updateDynamicArgs() reads;
    // null unless set.
    void setDynamicArgsCarrier(QObject *carrier) { m_dynamicArgsCarrier = carrier; }
    QMap<QString, QVariant> dynamicArgs() const { return m_dynamicArgs; }

    void reset();

signals:
    void sigGetDataButtonClicked(QString Filter);
    // Also offered as (int) and (), the omitted arguments defaulted; a
    // listener of any of the three forms hears each emission once.
    void signalSimpleButtonSaveToExcel(int type = 0, QString saveType = QStringLiteral("excel"));
    void signalSortChanged();
    void signalComboBoxChanged(int unitCode, int unitCategroy);

public slots:
    void slotSimpleButtonGetDataClicked();
    void slotSimpleButtonSaveToExcel(int type);
    void updateDynamicArgs();

private:
    void clearControls();
    void resolveDynamicDefault(FilterParam::Cntrl &cntrl) const;
    QVariant translate(const QString &key, const QVariant &value, const QString &valueType) const;

    QList<TFTableModelData::FilterData> m_rows;
    FlowLayout *m_layout;
    QList<TFBaseFilterWidget *> m_controls;
    TFCustomMath *m_math;
    QMap<QString, QVariant> m_dynamicArgs;
    QPointer<QObject> m_dynamicArgsCarrier;
    QMap<QString, QVariant> m_args;
};
