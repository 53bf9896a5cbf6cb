#include "compiledformula.h"
#include "tfelement.h"

#include <QStringList>

namespace {

bool isDecimalLiteral(const QString &text)
{
    int dots = 0;
    for (QChar c : text) {
        if (c == QLatin1Char('.'))
            ++dots;
        else if (c < QLatin1Char('0') || c > QLatin1Char('9'))
            return false;
    }
    return !text.isEmpty() && dots <= 1;
}

// Recursive descent over the elements:
//   sum     := product (("+" | "-") product)*
//   product := unary (("*" | "/" | "%") unary)*
//   unary   := ("+" | "-") unary | primary
//   primary := number | field | "(" sum ")"
// Nesting is bounded so that a hostile formula cannot exhaust the stack; a
// deeper one simply takes the slow road.
class ArithmeticChecker
{
public:
    explicit ArithmeticChecker(const QVector<FormulaElement> &elements) : m_elements(elements) {}

    bool check()
    {
        return !m_elements.isEmpty() && sum(0) && m_position == m_elements.size();
    }

private:
    static constexpr int MaxDepth = 64;

    bool atText(const char *text) const
    {
        return m_position < m_elements.size()
               && m_elements.at(m_position).text == QLatin1String(text);
    }

    bool atOperator(const char *text) const
    {
        return atText(text) && m_elements.at(m_position).type == TFElement::Operator;
    }

    bool sum(int depth)
    {
        if (!product(depth))
            return false;
        while (atOperator("+") || atOperator("-")) {
            ++m_position;
            if (!product(depth))
                return false;
        }
        return true;
    }

    bool product(int depth)
    {
        if (!unary(depth))
            return false;
        while (atOperator("*") || atOperator("/") || atOperator("%")) {
            ++m_position;
            if (!unary(depth))
                return false;
        }
        return true;
    }

    bool unary(int depth)
    {
        int signs = 0;
        while (atOperator("+") || atOperator("-")) {
            ++m_position;
            if (++signs > MaxDepth)
                return false;
        }
        return primary(depth);
    }

    bool primary(int depth)
    {
        if (m_position >= m_elements.size() || depth > MaxDepth)
            return false;
        const FormulaElement &element = m_elements.at(m_position);
        if (element.type == TFElement::Number) {
            if (!isDecimalLiteral(element.text))
                return false;
            ++m_position;
            return true;
        }
        if (element.type == TFElement::String) {
            ++m_position;
            return true;
        }
        if (element.type == TFElement::Splitor && element.text == QLatin1String("(")) {
            ++m_position;
            if (!sum(depth + 1))
                return false;
            if (!(atText(")") && m_elements.at(m_position).type == TFElement::Splitor))
                return false;
            ++m_position;
            return true;
        }
        return false;
    }

    const QVector<FormulaElement> &m_elements;
    int m_position = 0;
};

} // namespace

// The glued text puts elements side by side with nothing between them, so
// "+" "+" would reach the engine as "++": that is not arithmetic.
bool CompiledFormula::checkArithmetic()
{
    for (int i = 1; i < elements.size(); ++i) {
        const FormulaElement &previous = elements.at(i - 1);
        const FormulaElement &current = elements.at(i);
        if (previous.type == TFElement::Operator && current.type == TFElement::Operator
            && previous.text == current.text
            && (current.text == QLatin1String("+") || current.text == QLatin1String("-")))
            return false;
    }
    return ArithmeticChecker(elements).check();
}

QString CompiledFormula::functionSource()
{
    m_compileTried = true;
    m_arithmetic = checkArithmetic();
    if (!m_arithmetic)
        return QString();

    QStringList parameters;
    QString body;
    for (int i = 0; i < elements.size(); ++i) {
        const FormulaElement &element = elements.at(i);
        if (element.type != TFElement::String) {
            body += element.text;
            continue;
        }
        const QString name = QStringLiteral("f%1").arg(m_fields.size());
        Field field;
        field.element = i;
        field.afterMinus = i > 0 && elements.at(i - 1).text == QLatin1String("-");
        m_fields.append(field);
        parameters.append(name);
        body += name;
    }
    return QStringLiteral("(function(%1){return %2;})").arg(parameters.join(QLatin1Char(',')), body);
}
