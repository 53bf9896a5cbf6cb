#include "filterwidget/tfbasefilterwidget.h"

#include <QHBoxLayout>

TFBaseFilterWidget::TFBaseFilterWidget(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFSubWidgetExpandData(parent)
    , m_data(data)
{
    setObjectName(data.ClassName);
}

TFBaseFilterWidget::~TFBaseFilterWidget() = default;

void TFBaseFilterWidget::layOutInRow(std::initializer_list<QWidget *> parts, int spacing, int leftMargin)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(leftMargin, 0, 0, 0);
    layout->setSpacing(spacing);
    for (QWidget *part : parts)
        layout->addWidget(part);
}
