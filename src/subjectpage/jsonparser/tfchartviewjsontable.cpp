#include "tfchartviewjsontable.h"

#include "tfjsonread.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonObject>

TFChartViewJsonTable::TFChartViewJsonTable(QObject* parent)
    : TFBaseJsonTable(parent)
{
}

TFChartViewJsonTable::~TFChartViewJsonTable() = default;

static ChartDataConfig readSeries(const QJsonObject& object)
{
    auto value = [&object](const char* key) { return object.value(QLatin1String(key)); };

    ChartDataConfig series;
    series.DataValues = value("DataValues").toString();
    series.FieldName = value("FieldName").toString();
    series.LegendLable = value("LegendLable").toString();
    series.LegendLableFormat = value("LegendLableFormat").toString();
    series.ChartType = value("ChartType").toString();
    series.ValueFormatString = value("ValueFormatString").toString();
    series.IsVisible = value("IsVisible").toBool();
    series.UnitCategory = value("UnitCategory").toInt();
    series.PrevUnitFactor = value("PrevUnitFactor").toInt();
    series.ShowUnitFactor = value("ShowUnitFactor").toDouble();
    series.ShowUnit = value("ShowUnit").toString();
    series.CaptionShowType = value("CaptionShowType").toInt();
    series.YShaftType = value("YShaftType").toString();
    series.SetStackGroup = value("SetStackGroup").toInt();
    return series;
}

void TFChartViewJsonTable::initWith(const QJsonValue& value)
{
    // A failed read leaves the table cleared, never with the old chart.
    m_config = ChartViewConfig();

    QJsonParseError error;
    const QJsonDocument document = TFJsonRead::parseEmbeddedJson(value, &error);
    if (error.error != QJsonParseError::NoError) {
        qDebug().noquote() << Q_FUNC_INFO << TFJsonRead::parseErrorText(error);
        return;
    }
    if (!document.isObject() || document.object().isEmpty())
        return;

    const QJsonObject object = document.object();
    auto member = [&object](const char* key) { return object.value(QLatin1String(key)); };

    m_config.ChartXData = member("ChartXData").toString();
    m_config.Title = member("Title").toString();
    m_config.YTitle = member("YTitle").toString();
    m_config.XDisplayDataPattern = member("XDisplayDataPattern").toInt();
    m_config.XDisplayStep = member("XDisplayStep").toInt();
    m_config.ChartType = member("ChartType").toString();
    m_config.XFieldName = member("XFieldName").toString();
    m_config.XItemNamesFormat = member("XItemNamesFormat").toString();
    m_config.IsSwitchXAxis = member("IsSwitchXAxis").toBool();
    // An element that is no object still counts as a series, of defaults.
    const QJsonArray series = member("ChartDataConfigs").toArray();
    for (const QJsonValue& element : series)
        m_config.ChartDataConfigs.append(readSeries(element.toObject()));
    m_config.Style = member("Style").toString();
    m_config.AnnoAngle = member("AnnoAngle").toInt();
    m_config.ToolBarVisible = member("ToolBarVisible").toBool();
    m_config.LegendPosition = member("LegendPosition").toInt();
    m_config.IsTurnXAxis = member("IsTurnXAxis").toBool();
    m_config.XValueType = member("XValueType").toString();
    m_config.DefaultDataChartType = member("DefaultDataChartType").toString();
    m_config.YSetMinMaxValue = member("YSetMinMaxValue").toString();
    m_config.YSetNullValue = member("YSetNullValue").toString();
}
