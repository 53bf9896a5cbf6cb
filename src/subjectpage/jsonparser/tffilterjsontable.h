#pragma once

#include "tfbasejsontable.h"

#include <QList>
#include <QMetaType>
#include <QString>

namespace TFTableModelData {

// One configured filter control. The fields carry the names of the keys they
// are copied from, misspelling of "DefualtValue" included, since that is how
// the service writes them.
struct FilterData
{
    QString DefualtValue;
    QString FieldName;
    QString ShowValue;
    int Width = 0;
    QString ParameterCategory = QStringLiteral("0");   // "1": a data-source parameter
    bool BeginGroup = false;
    QString Filter;
    QString DataSource;
    QString Operator;
    QString NameValues;
    int UnitCategory = 0;
    QString ValueType;
    QString FilterCntrl;
    QString ClassName;             // chooses the control and becomes its object name
    QString Value;
    QString ImageIndex = QStringLiteral("0");
    QString Caption;
    QString ControlParameters;
    QString DataSourceFilter;
    QString DataSourceFilterParams;
    QString DataSourceName;
};

} // namespace TFTableModelData

Q_DECLARE_METATYPE(TFTableModelData::FilterData)

// The filter controls of a view: the "filters" entry of the view
// configuration, a JSON string holding an array text of one object per
// control.
class TFFilterJsonTable : public TFBaseJsonTable
{
    Q_OBJECT
public:
    explicit TFFilterJsonTable(QObject* parent = nullptr);
    ~TFFilterJsonTable() override;

    void initWith(const QJsonValue& value) override;
    int tableType() const override { return FilterTable; }

    QList<TFTableModelData::FilterData> filters() const { return m_filters; }

private:
    QList<TFTableModelData::FilterData> m_filters;
};
