#pragma once

#include "filterwidget/tfbasefilterwidget.h"

// A control with no surface: it holds a constant of the configuration, or a
// value that the page's context (F9 arguments, dynamic defaults) fills in
// later. The factory hides it at once; it still reports.
class TFFilterLabel : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    TFFilterLabel(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;
};
