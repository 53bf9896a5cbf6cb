#include "filterwidget/tfyearmonthsimple.h"

#include "filterwidget/tfperiodtexts.h"

#include <QComboBox>
#include <QDate>
#include <QHBoxLayout>
#include <QLabel>

TFYearMonthSimple::TFYearMonthSimple(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
    , m_year(new QComboBox(this))
    , m_month(new QComboBox(this))
    , m_label(new QLabel(this))
{
    const TFTableModelData::FilterData row = filterData();
    layOutInRow({m_label, m_year, m_month}, 6);
    TFPeriod::useFocusDelegate(m_year);
    TFPeriod::useFocusDelegate(m_month);
    m_year->addItems(TFPeriod::yearsDownTo(1992));
    m_month->addItems(TFPeriod::months());
    m_label->setText(row.Caption);

    QString text = QString(row.DefualtValue).remove('=');
    if (text.contains(QLatin1String("date")))
        text.remove(QLatin1String("date")).remove('\'');
    const QDate date = QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
    if (date.isValid()) {
        m_year->setCurrentText(TFPeriod::yearText(date.year()));
        m_month->setCurrentText(TFPeriod::monthText(date.month()));
    }
}

FilterParam::Cntrl TFYearMonthSimple::getCntrl()
{
    const TFTableModelData::FilterData row = filterData();
    FilterParam::Cntrl cntrl;
    const QDate date(TFPeriod::bare(m_year->currentText()).toInt(), TFPeriod::bare(m_month->currentText()).toInt(), 1);
    cntrl.value = date.toString(QStringLiteral("yyyyMM"));
    cntrl.key = row.FieldName;
    cntrl.op = FilterParam::serviceOperator(row.Operator);
    cntrl.multiField = false;
    cntrl.valueType = row.ValueType;
    cntrl.caption = row.Caption;
    return cntrl;
}
