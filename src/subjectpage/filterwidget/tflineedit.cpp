#include "filterwidget/tflineedit.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

TFLineEdit::TFLineEdit(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
    , m_label(new QLabel(data.Caption, this))
    , m_edit(new QLineEdit(data.DefualtValue, this))
{
    layOutInRow({m_label, m_edit}, 6, 10);
}

FilterParam::Cntrl TFLineEdit::getCntrl()
{
    const TFTableModelData::FilterData data = filterData();
    FilterParam::Cntrl cntrl;
    cntrl.key = data.FieldName.isEmpty() ? QStringLiteral("keywords") : data.FieldName;
    cntrl.value = m_edit->text();   // empty, yet valid: a keyword box always reaches the request
    cntrl.op = FilterParam::serviceOperator(data.Operator);
    cntrl.valueType = data.ValueType;
    cntrl.caption = data.Caption;
    if (cntrl.op == QLatin1String("in")) {
        const QStringList parts = m_edit->text().split(QLatin1Char(','), Qt::SkipEmptyParts);
        cntrl.value = parts;
        if (cntrl.valueType.compare(QLatin1String("decimal"), Qt::CaseInsensitive) == 0) {
            // A list of numbers by its type, yet the parts go out as texts.
            cntrl.valueType = QStringLiteral("intlist");
        } else {
            cntrl.valueType = QStringLiteral("stringList");
        }
    }
    return cntrl;
}
