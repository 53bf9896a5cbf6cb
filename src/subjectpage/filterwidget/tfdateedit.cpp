#include "filterwidget/tfdateedit.h"

#include <QDateEdit>
#include <QHBoxLayout>
#include <QLabel>

TFDateEdit::TFDateEdit(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
    , m_label(new QLabel(data.Caption, this))
    , m_edit(new QDateEdit(this))
{
    m_edit->setCalendarPopup(true);
    m_edit->setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    layOutInRow({m_label, m_edit}, 6);

    // "=date'2024-12-31'" and "2024-12-31" both read; anything else leaves
    // the editor on its own first date, not on today.
    QString text = data.DefualtValue;
    text.remove(QLatin1Char('=')).remove(QStringLiteral("date")).remove(QLatin1Char('\''));
    const QDate date = QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
    if (date.isValid())
        m_edit->setDate(date);
}

FilterParam::Cntrl TFDateEdit::getCntrl()
{
    const TFTableModelData::FilterData data = filterData();
    FilterParam::Cntrl cntrl;
    cntrl.key = data.FieldName;
    cntrl.valueType = data.ValueType;
    cntrl.caption = data.Caption;
    cntrl.value = QDateTime(m_edit->date(), QTime(23, 59, 59)).toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
    cntrl.op = FilterParam::serviceOperator(data.Operator);
    return cntrl;
}
