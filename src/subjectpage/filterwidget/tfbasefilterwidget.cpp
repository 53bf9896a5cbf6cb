#include "filterwidget/tfbasefilterwidget.h"

TFBaseFilterWidget::TFBaseFilterWidget(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFSubWidgetExpandData(parent)
    , m_data(data)
{
    setObjectName(data.ClassName);
}

TFBaseFilterWidget::~TFBaseFilterWidget() = default;
