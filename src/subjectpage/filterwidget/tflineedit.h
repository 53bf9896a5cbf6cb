#pragma once

#include "filterwidget/tfbasefilterwidget.h"

class QLabel;
class QLineEdit;

// A text box: a keyword search when it names no field, otherwise a
// comparison of one field, or with "IN" a list typed with commas.
class TFLineEdit : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    TFLineEdit(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;

private:
    QLabel *m_label;
    QLineEdit *m_edit;
};
