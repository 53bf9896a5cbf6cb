#pragma once

#include "filterwidget/filterparam.h"
#include "filterwidget/tfsubwidgetexpanddata.h"
#include "jsonparser/tffilterjsontable.h"

#include <initializer_list>

// A control of the filter bar. It keeps its configuration row, is named
// after the row's ClassName (the bar and the factory test that name), and
// answers one question: what is your filter value now.
class TFBaseFilterWidget : public TFSubWidgetExpandData
{
    Q_OBJECT
public:
    TFBaseFilterWidget(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);
    ~TFBaseFilterWidget() override;

    // The control's filter; an empty key means it contributes nothing.
    virtual FilterParam::Cntrl getCntrl() = 0;

protected:
    TFTableModelData::FilterData filterData() const { return m_data; }
    // Lays the control's parts out in one row, edge to edge with the bar's
    // flow: a caption and its fields, or the parts of a range.
    void layOutInRow(std::initializer_list<QWidget *> parts, int spacing, int leftMargin = 0);

private:
    TFTableModelData::FilterData m_data;
};
