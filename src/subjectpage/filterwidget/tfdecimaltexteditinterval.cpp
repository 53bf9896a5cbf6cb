#include "filterwidget/tfdecimaltexteditinterval.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>

TFDecimalTextEditInterval::TFDecimalTextEditInterval(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
    , m_label(new QLabel(data.Caption, this))
    , m_start(new QSpinBox(this))
    , m_dash(new QLabel(QStringLiteral("-"), this))
    , m_end(new QSpinBox(this))
{
    m_start->setObjectName(QStringLiteral("startValue"));
    m_end->setObjectName(QStringLiteral("endValue"));
    layOutInRow({m_label, m_start, m_dash, m_end}, 2);

    int step = 1;
    const QStringList stepParts = data.ControlParameters.split(QLatin1Char('='));
    if (stepParts.size() >= 2)
        step = stepParts.at(1).toInt();
    if (step == 0)
        step = 1;
    for (QSpinBox *box : {m_start, m_end}) {
        box->setRange(-10000, 10000);
        box->setSingleStep(step);
    }

    QString text = data.DefualtValue;
    const QStringList parts = text.remove(QLatin1Char('=')).split(QLatin1Char(';'), Qt::SkipEmptyParts);
    if (parts.size() >= 2) {
        m_start->setValue(parts.at(0).toInt(nullptr, 10));
        m_end->setValue(parts.at(1).toInt(nullptr, 10));
    }
}

FilterParam::Cntrl TFDecimalTextEditInterval::getCntrl()
{
    const TFTableModelData::FilterData data = filterData();
    FilterParam::Cntrl cntrl;
    if (m_start->value() == 0 && m_end->value() == 0)
        return cntrl;
    cntrl.key = data.FieldName;
    cntrl.caption = data.Caption;
    cntrl.value = QStringLiteral("%1,%2").arg(m_start->value()).arg(m_end->value());
    cntrl.op = QStringLiteral(">=,<=");
    cntrl.multiField = true;
    cntrl.valueType = data.ValueType;
    return cntrl;
}
