#pragma once

#include "tfbasejsontable.h"

#include <QList>
#include <QString>

// One series of a chart, an element of "ChartDataConfigs". The fields carry
// the names of their keys, "LegendLable" spelled as the service spells it.
struct ChartDataConfig
{
    QString DataValues;
    QString FieldName;
    QString LegendLable;
    QString LegendLableFormat;
    QString ChartType;
    QString ValueFormatString;
    bool IsVisible = false;        // a series must say true to be shown
    int UnitCategory = 0;
    int PrevUnitFactor = 0;        // a JSON integer; a fraction reads as 0
    double ShowUnitFactor = 0.0;   // stays a double, unlike a column's
    QString ShowUnit;
    int CaptionShowType = 0;
    QString YShaftType;
    int SetStackGroup = 0;
};

// Everything the "ChartViewConfig" entry says about a view's chart.
struct ChartViewConfig
{
    QString ChartXData;
    QString Title;
    QString YTitle;
    int XDisplayDataPattern = 0;
    int XDisplayStep = 0;
    QString ChartType;
    QString XFieldName;
    QString XItemNamesFormat;
    bool IsSwitchXAxis = false;    // one series per row instead of per entry
    QList<ChartDataConfig> ChartDataConfigs;
    QString Style;
    int AnnoAngle = 0;
    bool ToolBarVisible = false;
    int LegendPosition = 0;
    bool IsTurnXAxis = false;
    QString XValueType;
    QString DefaultDataChartType;
    QString YSetMinMaxValue;
    QString YSetNullValue;
};

// The chart description of a view: a JSON string holding one object text.
class TFChartViewJsonTable : public TFBaseJsonTable
{
    Q_OBJECT
public:
    explicit TFChartViewJsonTable(QObject* parent = nullptr);
    ~TFChartViewJsonTable() override;

    void initWith(const QJsonValue& value) override;
    int tableType() const override { return ChartViewTable; }

    ChartViewConfig config() const { return m_config; }

private:
    ChartViewConfig m_config;
};
