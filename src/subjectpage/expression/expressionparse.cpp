#include "expressionparse.h"
#include "compiledformula.h"
#include "elementreadfactory.h"
#include "scriptwatchdog.h"
#include "tfcustommath.h"
#include "tfelement.h"

#include <QDateTime>
#include <QJSEngine>
#include <QJSValue>

#include <climits>
#include <memory>

namespace {

const QString NoResult = QStringLiteral("-99999999");

QString addTexts(const QString &left, const QString &right)
{
    return QStringLiteral("%1").arg(left.toDouble() + right.toDouble());
}

QString subtractTexts(const QString &left, const QString &right)
{
    return QStringLiteral("%1").arg(left.toDouble() - right.toDouble());
}

QString multiplyTexts(const QString &left, const QString &right)
{
    return QStringLiteral("%1").arg(left.toDouble() * right.toDouble());
}

// The divisor is tested as an integer, so "0.5" counts as zero too.
QString divideTexts(const QString &left, const QString &right)
{
    if (right.toInt() == 0)
        return NoResult;
    return QStringLiteral("%1").arg(left.toDouble() / right.toDouble());
}

QString remainderOfTexts(const QString &left, const QString &right)
{
    const int divisor = right.toInt();
    if (divisor == 0)
        return NoResult;
    // INT_MIN % -1 traps on x86; the remainder by -1 is always 0.
    if (divisor == -1)
        return QStringLiteral("%1").arg(0);
    return QStringLiteral("%1").arg(left.toInt() % divisor);
}

// Filled when the library loads.
const QHash<QString, ExpressionParse::StringOperation> g_stringOperations = {
    { QStringLiteral("+"), &addTexts },
    { QStringLiteral("-"), &subtractTexts },
    { QStringLiteral("*"), &multiplyTexts },
    { QStringLiteral("/"), &divideTexts },
    { QStringLiteral("%"), &remainderOfTexts },
};

// How a field's value is written into the formula: a leading "=" is dropped;
// a value with a "." is written as a fixed-point decimal, anything else as a
// 32-bit integer, so "1,000" becomes 0.
QString fieldText(const QVariant &value)
{
    QString text = value.toString();
    if (text.startsWith(QLatin1Char('=')))
        text.remove(0, 1);
    if (text.contains(QLatin1Char('.')))
        return QString::number(text.toDouble(), 'f');
    return QString::number(text.toInt());
}

bool isFixedLiteral(const QString &text)
{
    int i = text.startsWith(QLatin1Char('-')) ? 1 : 0;
    bool digits = false;
    for (; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9'))
            digits = true;
        else if (c != QLatin1Char('.'))
            return false;
    }
    return digits;
}

// "0", "12", "0.5": what the engine reads as one number token. It refuses
// a leading zero such as "05", so that is no decimal here either.
bool isUnsignedDecimal(const QString &text)
{
    const int dot = text.indexOf(QLatin1Char('.'));
    const int integerDigits = dot < 0 ? text.size() : dot;
    if (integerDigits == 0 || (integerDigits > 1 && text.at(0) == QLatin1Char('0')))
        return false;
    if (dot >= 0 && dot == text.size() - 1)
        return false;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (i != dot && (c < QLatin1Char('0') || c > QLatin1Char('9')))
            return false;
    }
    return true;
}

// The engine's answer as a number-like variant, or an invalid one. A number
// whose text would be "nan", "inf" or "-inf" is no answer; it is tested as a
// number, since writing every row's result out as text is costly.
QVariant numberLike(const QVariant &value)
{
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (!ok)
        return QVariant();
    if (value.userType() == QMetaType::Double) {
        if (qIsNaN(number) || qIsInf(number))
            return QVariant();
        return value;
    }
    if (value.userType() == QMetaType::Int || value.userType() == QMetaType::Bool)
        return value;
    const QString text = value.toString();
    if (text == QLatin1String("nan") || text == QLatin1String("inf") || text == QLatin1String("-inf"))
        return QVariant();
    return value;
}

// A parser that meets many formulas (captions, fuzzing) must not grow
// without bound; a table uses one or two.
constexpr int MaxCachedFormulas = 256;

} // namespace

ExpressionParse::ExpressionParse(QObject *parent)
    : QObject(parent)
    , m_math(TFCustomMath::instance())
    , m_engine(new QJSEngine(this))
    , m_factory(new ElementReadFactory(this))
    , m_watchdog(new ScriptWatchdog(m_engine))
{
}

ExpressionParse::~ExpressionParse()
{
    // The watchdog must let go of the engine before the engine goes.
    delete m_watchdog;
    qDeleteAll(m_formulas);
}

const QHash<QString, ExpressionParse::StringOperation> &ExpressionParse::stringOperations()
{
    return g_stringOperations;
}

void ExpressionParse::parse(const QString &expression, QVariant &result,
                            const QMap<QString, QVariant> &arguments)
{
    m_expression = expression;
    m_factory->setSource(expression);
    result = QVariant();

    CompiledFormula *formula = compiledFormula(expression);
    m_factory->setLastChar(formula->lastCharAfter);
    // A character that cannot start an element ("<", "=", "$", a quote, a
    // line feed) would stop the scan for good; such a formula is an error.
    if (formula->stalled)
        return;

    QJSValue value;
    if (!evaluateArithmetic(*formula, arguments, value))
        value = evaluateGlued(*formula, arguments);
    result = numberLike(value.toVariant());
}

CompiledFormula *ExpressionParse::compiledFormula(const QString &expression)
{
    const QChar last = m_factory->lastChar();
    const bool fresh = last.isNull() || m_factory->isSplitter(last);
    const QString key = (fresh ? QLatin1Char('1') : QLatin1Char('0')) + expression;

    CompiledFormula *formula = m_formulas.value(key);
    if (formula)
        return formula;
    if (m_formulas.size() >= MaxCachedFormulas) {
        qDeleteAll(m_formulas);
        m_formulas.clear();
    }
    formula = scan(expression);
    m_formulas.insert(key, formula);
    return formula;
}

CompiledFormula *ExpressionParse::scan(const QString &expression)
{
    auto *formula = new CompiledFormula;
    int position = 0;
    while (position < expression.size()) {
        std::unique_ptr<TFElement> element(m_factory->readElement(position));
        if (!element) {
            ++position;
            continue;
        }
        if (element->endPosition() < position) {
            formula->stalled = true;
            break;
        }
        formula->elements.append({ element->text(), element->type(), element->endPosition() });
        position = element->endPosition() + 1;
    }
    formula->lastCharAfter = m_factory->lastChar();
    return formula;
}

// The quick road: a compiled function called with the values that the glued
// text would hold. Gives false whenever a value would not splice as a plain
// number, and the caller then takes the glued text.
bool ExpressionParse::evaluateArithmetic(CompiledFormula &formula,
                                         const QMap<QString, QVariant> &arguments, QJSValue &value)
{
    if (!formula.compileTried()) {
        const QString source = formula.functionSource();
        if (!source.isEmpty()) {
            const QJSValue function = runScript(source);
            if (function.isCallable())
                formula.setFunction(function);
        }
    }
    if (!formula.function().isCallable())
        return false;

    // Calls first: a call result that cannot be passed decides for the
    // glued text before any field is converted.
    const QVector<CompiledFormula::Splice> &splices = formula.splices();
    QJSValueList callResults;
    for (const CompiledFormula::Splice &splice : splices) {
        if (splice.kind != CompiledFormula::Splice::Call)
            continue;
        // Calls give dates, empty texts and signed numbers too; only an
        // unsigned decimal reads the same spliced or passed.
        const QString text = evalFunction(splice.text);
        if (!isUnsignedDecimal(text))
            return false;
        bool isInt = false;
        const int number = text.toInt(&isInt);
        callResults.append(isInt ? QJSValue(number) : QJSValue(text.toDouble()));
    }

    int call = 0;
    QJSValueList ordered;
    ordered.reserve(splices.size());
    for (const CompiledFormula::Splice &splice : splices) {
        if (splice.kind == CompiledFormula::Splice::Call) {
            ordered.append(callResults.at(call++));
            continue;
        }
        const auto argument = arguments.constFind(splice.text);
        if (argument == arguments.constEnd())
            return false;
        QString text = argument.value().toString();
        if (text.startsWith(QLatin1Char('=')))
            text.remove(0, 1);
        if (text.contains(QLatin1Char('.'))) {
            const QString fixed = QString::number(text.toDouble(), 'f');
            if (!isFixedLiteral(fixed) || (splice.afterMinus && fixed.startsWith(QLatin1Char('-'))))
                return false;
            ordered.append(QJSValue(fixed.toDouble()));
        } else {
            const int number = text.toInt();
            if (splice.afterMinus && number < 0)
                return false;
            ordered.append(QJSValue(number));
        }
    }

    m_watchdog->begin();
    value = formula.function().call(ordered);
    m_watchdog->end();
    return true;
}

QJSValue ExpressionParse::evaluateGlued(const CompiledFormula &formula,
                                        const QMap<QString, QVariant> &arguments)
{
    // Fields become numbers; a name the row lacks stays a bare word.
    QVector<FormulaElement> elements = formula.elements;
    for (FormulaElement &element : elements) {
        if (element.type != TFElement::String)
            continue;
        const auto argument = arguments.constFind(element.text);
        if (argument == arguments.constEnd())
            continue;
        element.text = fieldText(argument.value());
        element.type = TFElement::Number;
    }

    // A word behind an operator followed by "(" is a call too. It takes
    // everything up to the first ")", whatever nesting stood in between.
    QVector<FormulaElement> merged;
    merged.reserve(elements.size());
    for (int i = 0; i < elements.size(); ++i) {
        FormulaElement element = elements.at(i);
        if (element.type == TFElement::Variable && i + 1 < elements.size()
            && elements.at(i + 1).text == QLatin1String("(")) {
            element.text += QLatin1Char('(');
            element.type = TFElement::Function;
            ++i;
            while (i + 1 < elements.size()) {
                ++i;
                element.text += elements.at(i).text;
                if (elements.at(i).text == QLatin1String(")"))
                    break;
            }
        }
        merged.append(element);
    }

    QString glued;
    for (FormulaElement &element : merged) {
        if (element.type == TFElement::Function)
            element.text = evalFunction(element.text);
        glued += element.text;
    }
    return runScript(glued);
}

QJSValue ExpressionParse::runScript(const QString &program)
{
    m_watchdog->begin();
    const QJSValue value = m_engine->evaluate(program, QString(), 1);
    m_watchdog->end();
    return value;
}

// Calls nest through the one argument: "todecimal(adddays(1))" evaluates
// "adddays(1)" first and hands its text on. Arguments are never split at
// ",". Peeled in a loop rather than by recursion, so that deep nesting
// cannot exhaust the stack.
QString ExpressionParse::evalFunction(const QString &call)
{
    QStringList names;
    QString text = call;
    QString argumentText;
    for (;;) {
        if (text.startsWith(QLatin1Char('$')))
            text.remove(0, 1);
        const int open = text.indexOf(QLatin1Char('('));
        QString name = text.left(open);
        QString arguments = text.mid(open + 1);
        arguments.chop(1);
        if (name.startsWith(QLatin1Char('$')))
            name.remove(0, 1);
        names.append(name);
        if (!arguments.contains(QLatin1Char('('))) {
            argumentText = arguments;
            break;
        }
        text = arguments;
    }
    for (int i = names.size() - 1; i >= 0; --i)
        argumentText = callAndFormat(names.at(i), argumentText);
    return argumentText;
}

// Dates, and every text, go out as "yyyy-MM-dd": a text that holds no date
// therefore comes back empty. Numbers go out as their text.
QString ExpressionParse::callAndFormat(const QString &name, const QString &argumentText) const
{
    QList<QVariant> arguments;
    if (!argumentText.isEmpty())
        arguments.append(argumentText);
    QVariant result;
    m_math->callFunction(name, arguments, result);
    if (result.canConvert<QDateTime>())
        return result.toDateTime().toString(QStringLiteral("yyyy-MM-dd"));
    return result.toString();
}
