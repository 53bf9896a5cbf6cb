#pragma once

#include "filterwidget/tfbasefilterwidget.h"

class QComboBox;
class QLabel;

// One month of one year, reported as "yyyyMM".
class TFYearMonthSimple : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    explicit TFYearMonthSimple(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;

    QComboBox *yearBox() const { return m_year; }
    QComboBox *monthBox() const { return m_month; }
    QLabel *label() const { return m_label; }

private:
    QComboBox *m_year;
    QComboBox *m_month;
    QLabel *m_label;
};
