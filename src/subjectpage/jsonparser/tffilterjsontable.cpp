#include "tffilterjsontable.h"

#include "tfjsonread.h"

#include <QDebug>
#include <QJsonArray>
#include <QJsonObject>

TFFilterJsonTable::TFFilterJsonTable(QObject* parent)
    : TFBaseJsonTable(parent)
{
}

TFFilterJsonTable::~TFFilterJsonTable() = default;

// ParameterCategory and ImageIndex are numbers on the wire and text in the
// record: 1 becomes "1", and a missing key or a string becomes "0".
static QString numberAsText(const QJsonValue& value)
{
    return QString::number(value.toDouble(), 'g', 6);
}

void TFFilterJsonTable::initWith(const QJsonValue& value)
{
    m_filters.clear();

    const QVector<QJsonObject> objects = TFJsonRead::embeddedObjects(value, Q_FUNC_INFO);
    for (const QJsonObject& object : objects) {
        auto text = [&object](const char* key) { return object.value(QLatin1String(key)).toString(); };

        TFTableModelData::FilterData filter;
        filter.DataSource = text("DataSource");
        filter.DefualtValue = text("DefualtValue");
        filter.FieldName = text("FieldName");
        filter.ShowValue = text("ShowValue");
        filter.Width = object.value(QLatin1String("Width")).toInt();
        filter.ParameterCategory = numberAsText(object.value(QLatin1String("ParameterCategory")));
        filter.BeginGroup = object.value(QLatin1String("BeginGroup")).toBool();
        filter.Filter = text("Filter");
        filter.Operator = text("Operator");
        filter.NameValues = text("NameValues");
        filter.UnitCategory = TFJsonRead::truncatedInt32(object.value(QLatin1String("UnitCategory")));
        filter.ValueType = text("ValueType");
        filter.FilterCntrl = text("FilterCntrl");
        filter.ClassName = text("ClassName");
        filter.Value = text("Value");
        filter.ImageIndex = numberAsText(object.value(QLatin1String("ImageIndex")));
        filter.Caption = text("Caption");
        filter.ControlParameters = text("ControlParameters");
        filter.DataSourceFilterParams = text("DataSourceFilterParams");
        filter.DataSourceFilter = text("DataSourceFilter");
        filter.DataSourceName = text("DataSourceName");
        m_filters.append(filter);
    }
}
