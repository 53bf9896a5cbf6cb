#pragma once

#include "filterwidget/tfbasefilterwidget.h"

#include <QMap>
#include <QString>
#include <QVariant>

class QComboBox;
class QLabel;

// A report period: a year and a period of it (quarters, half year, year),
// reported as the period's last day, in the form ParameterCategory asks for.
class TFReportDateSimple : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    explicit TFReportDateSimple(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;
    // The last day of the chosen period.
    QDate periodEnd() const;

    QComboBox *yearBox() const { return m_year; }
    QComboBox *periodBox() const { return m_period; }
    QLabel *label() const { return m_label; }

private:
    void fill();
    void applyDefault();

    QComboBox *m_year;
    QComboBox *m_period;
    QLabel *m_label;
    QMap<QString, QVariant> m_years;
    QMap<QString, QVariant> m_periods;
};
