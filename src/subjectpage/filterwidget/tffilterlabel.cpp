#include "filterwidget/tffilterlabel.h"

#include <QDate>
#include <QDateTime>

TFFilterLabel::TFFilterLabel(const TFTableModelData::FilterData &data, QWidget *parent)
    : TFBaseFilterWidget(data, parent)
{
}

FilterParam::Cntrl TFFilterLabel::getCntrl()
{
    const TFTableModelData::FilterData data = filterData();
    FilterParam::Cntrl cntrl;
    cntrl.key = data.FieldName;
    cntrl.value = data.DefualtValue;
    cntrl.op = FilterParam::serviceOperator(data.Operator);
    cntrl.valueType = data.ValueType;
    cntrl.caption = data.Caption;

    // Several values make a list: numbers for a decimal field, texts otherwise.
    const QStringList parts = data.DefualtValue.split(QLatin1Char(';'), Qt::SkipEmptyParts);
    if (parts.size() >= 2) {
        cntrl.value = parts;
        if (cntrl.valueType.compare(QLatin1String("decimal"), Qt::CaseInsensitive) == 0) {
            cntrl.valueType = QStringLiteral("intlist");
            QVariantList numbers;
            for (const QString &part : parts)
                numbers.append(part.toLongLong(nullptr, 10));
            cntrl.value = numbers;
        } else {
            cntrl.valueType = QStringLiteral("stringList");
        }
    }

    if (cntrl.valueType.toLower() == QLatin1String("datetime")) {
        const QString text = cntrl.value.toString();
        QDate date = QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
        if (!date.isValid())
            date = QDate::fromString(text, QStringLiteral("yyyy-M-d"));
        if (date.isValid())
            cntrl.value = FilterParam::serviceDateText(QDateTime(date, QTime(0, 0)));
    }

    // A dynamic default "=$name([Caption])" is left for the bar to resolve;
    // a data-source parameter loses its "=" signs, a custom filter keeps them.
    // A list has no such text and stays as it is.
    if (cntrl.value.type() == QVariant::String) {
        QString text = cntrl.value.toString();
        if (!FilterParam::readDynamicDefault(text, nullptr, nullptr)
            && data.ParameterCategory == QLatin1String("1"))
            cntrl.value = text.remove(QLatin1Char('='));
    }
    return cntrl;
}
