#pragma once

#include "filterwidget/tfbasefilterwidget.h"

class QDateEdit;
class QLabel;

// One date, compared with its field by the configured operator. It reports
// the end of the chosen day, whatever the operator.
class TFDateEdit : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    TFDateEdit(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;

private:
    QLabel *m_label;
    QDateEdit *m_edit;
};
