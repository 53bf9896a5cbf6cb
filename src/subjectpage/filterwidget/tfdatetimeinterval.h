#pragma once

#include "filterwidget/tfbasefilterwidget.h"

class QDateEdit;
class QLabel;
class TFCustomMath;

// A range of days, from the start of the first to the end of the last. Its
// default is two parts, each a date "date'yyyy-MM-dd'" or a function
// "$name(n)"; the end can never lie before the start.
class TFDatetimeInterval : public TFBaseFilterWidget
{
    Q_OBJECT
public:
    TFDatetimeInterval(const TFTableModelData::FilterData &data, QWidget *parent = nullptr);

    FilterParam::Cntrl getCntrl() override;

    // One part of a default as date text: a literal date, the text of a
    // function's result, or the part as it stands.
    static QString resolvePart(const QString &part, const TFCustomMath *math);

private:
    QLabel *m_label;
    QDateEdit *m_start;
    QLabel *m_dash;
    QDateEdit *m_end;
    TFCustomMath *m_math;
};
