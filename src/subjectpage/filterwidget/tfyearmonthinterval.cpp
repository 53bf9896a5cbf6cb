#include "filterwidget/tfyearmonthinterval.h"

#include "filterwidget/tfperiodtexts.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>

TFYearMonthInterval::TFYearMonthInterval(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
    , m_startYear(new QComboBox(this))
    , m_startMonth(new QComboBox(this))
    , m_endYear(new QComboBox(this))
    , m_endMonth(new QComboBox(this))
    , m_label(new QLabel(this))
    , m_dash(new QLabel(this))
{
    const TFTableModelData::FilterData row = filterData();
    layOutInRow({m_label, m_startYear, m_startMonth, m_dash, m_endYear, m_endMonth}, 2);

    const QStringList years = row.NameValues.isEmpty() ? TFPeriod::yearsDownTo(1999)
                                                       : row.NameValues.split(';', Qt::SkipEmptyParts);
    for (QComboBox *box : {m_startYear, m_startMonth, m_endYear, m_endMonth}) {
        TFPeriod::useFocusDelegate(box);
        // The configured width, whatever it is: 0 leaves no room.
        box->setFixedWidth(row.Width);
    }
    m_startYear->addItems(years);
    m_endYear->addItems(years);
    m_startMonth->addItems(TFPeriod::months());
    m_endMonth->addItems(TFPeriod::months());
    m_dash->setText(QStringLiteral("-"));
    m_label->setText(row.Caption);
    if (m_startYear->count() > 0) {
        for (QComboBox *box : {m_startYear, m_startMonth, m_endYear, m_endMonth})
            box->setCurrentIndex(0);
    }
}

FilterParam::Cntrl TFYearMonthInterval::getCntrl()
{
    const TFTableModelData::FilterData row = filterData();
    FilterParam::Cntrl cntrl;
    cntrl.value = QStringLiteral("'%1-%2','%3-%4'")
                      .arg(TFPeriod::bare(m_startYear->currentText()), TFPeriod::bare(m_startMonth->currentText()),
                           TFPeriod::bare(m_endYear->currentText()), TFPeriod::bare(m_endMonth->currentText()));
    cntrl.op = QStringLiteral(">=,<=");
    cntrl.multiField = true;
    cntrl.caption = row.Caption;
    cntrl.key = row.FieldName;
    // The field is named by ValueType; the value carries no type.
    cntrl.key = row.ValueType;
    return cntrl;
}
