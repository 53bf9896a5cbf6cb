#pragma once

#include "filterwidget/tfbasefilterwidget.h"

class QLabel;
class QSpinBox;

// A range of whole numbers. Both bounds at 0 mean "no filter".
class TFDecimalTextEditInterval : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    TFDecimalTextEditInterval(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;

private:
    QLabel *m_label;
    QSpinBox *m_start;
    QLabel *m_dash;
    QSpinBox *m_end;
};
