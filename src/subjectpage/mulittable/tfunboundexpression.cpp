#include "tfunboundexpression.h"

#include "expression/expressionparse.h"

#include <QRegExp>

#include <cmath>

TFUnboundExpression::TFUnboundExpression(ParserSource parserSource)
    : m_parserSource(std::move(parserSource))
{
}

const TFUnboundExpression::Form& TFUnboundExpression::formOf(const QString& expression)
{
    auto it = m_forms.constFind(expression);
    if (it != m_forms.constEnd())
        return *it;

    Form form;
    QRegExp pattern(QStringLiteral("(.*)(SUM|AVERAGE|GEOMEAN|MAX)(\\(?)\\[(.*)\\](\\)?)(.*)"),
                    Qt::CaseInsensitive);
    if (pattern.indexIn(expression) != -1 && pattern.captureCount() == 6) {
        form.aggregate = true;
        form.function = pattern.cap(2);
        form.suffix = pattern.cap(4);
        form.suffixKey = QStringLiteral("__") + form.suffix;
    }
    return *m_forms.insert(expression, form);
}

QVariant TFUnboundExpression::evaluate(const QString& expression, const QVariantMap& row)
{
    const Form& form = formOf(expression);
    if (!form.aggregate) {
        QVariant result;
        if (ExpressionParse* parser = m_parserSource())
            parser->parse(expression, result, row);
        return result;
    }
    if (form.function.isEmpty() || form.suffix.isEmpty())
        return QVariant();

    // Every key counts but the one that is exactly the suffix: the "__" test
    // only decides between counting and counting.
    double sum = 0;
    double product = 1;
    double largest = 0;
    int count = 0;
    for (auto it = row.constBegin(); it != row.constEnd(); ++it) {
        const QString& key = it.key();
        if (!key.contains(form.suffixKey)
            && key.compare(form.suffix, Qt::CaseInsensitive) == 0)
            continue;
        const double value = it.value().toDouble();
        sum += value;
        product *= value;
        largest = count == 0 ? value : qMax(largest, value);
        ++count;
    }

    if (form.function.compare(QLatin1String("SUM"), Qt::CaseInsensitive) == 0)
        return sum;
    if (form.function.compare(QLatin1String("AVGERAGE"), Qt::CaseInsensitive) == 0)
        return sum / count;
    if (form.function.compare(QLatin1String("GEOMEAN"), Qt::CaseInsensitive) == 0)
        return count == 0 ? QVariant() : QVariant(std::pow(product, count));
    if (form.function.compare(QLatin1String("MAX"), Qt::CaseInsensitive) == 0)
        return count == 0 ? QVariant() : QVariant(largest);
    return QVariant();
}
