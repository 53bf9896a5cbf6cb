#include "filterwidget/tffilterwidget.h"

TFFilterWidget::TFFilterWidget(QWidget *parent)
    : QFrame(parent)
{
    setObjectName(QStringLiteral("filterWidget"));
}

void TFFilterWidget::setFilterData(const QList<TFTableModelData::FilterData> &rows)
{
    m_rows = rows;
}

void TFFilterWidget::finalFilter(QList<FilterParam::DataSourceFilter> &dataSourceFilters,
                                 QList<FilterParam::CustomFilter> &customFilters)
{
    Q_UNUSED(dataSourceFilters)
    Q_UNUSED(customFilters)
}

QList<FilterParam::Cntrl> TFFilterWidget::getCntrls() const
{
    return QList<FilterParam::Cntrl>();
}

bool TFFilterWidget::isDataSourceFilter(const QString &key) const
{
    if (key == QLatin1String("keywords"))
        return true;
    for (const TFTableModelData::FilterData &row : m_rows) {
        if (row.FieldName == key)
            return row.ClassName != QLatin1String("LabelControl") && row.ParameterCategory == QLatin1String("1");
    }
    return false;
}

void TFFilterWidget::setUnitText(const QString &text)
{
    m_unitText = text;
}

void TFFilterWidget::reset()
{
    m_unitText.clear();
}

void TFFilterWidget::slotSimpleButtonGetDataClicked()
{
    emit sigGetDataButtonClicked(QString());
}

void TFFilterWidget::slotSimpleButtonSaveToExcel(int type)
{
    emit signalSimpleButtonSaveToExcel(type, QStringLiteral("excel"));
}
