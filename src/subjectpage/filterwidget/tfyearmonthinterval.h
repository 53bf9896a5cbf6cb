#pragma once

#include "filterwidget/tfbasefilterwidget.h"

class QComboBox;
class QLabel;

// A range of year-month pairs, from a start year and month to an end year
// and month. The field it filters is named by ValueType.
class TFYearMonthInterval : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    explicit TFYearMonthInterval(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;

    QComboBox *startYear() const { return m_startYear; }
    QComboBox *startMonth() const { return m_startMonth; }
    QComboBox *endYear() const { return m_endYear; }
    QComboBox *endMonth() const { return m_endMonth; }
    QLabel *label() const { return m_label; }

private:
    QComboBox *m_startYear;
    QComboBox *m_startMonth;
    QComboBox *m_endYear;
    QComboBox *m_endMonth;
    QLabel *m_label;
    QLabel *m_dash;
};
