#include "tfcellstyleengine.h"

#include <QColor>
#include <QJSEngine>
#include <QVector>

namespace {

bool isIdentifierStart(QChar c)
{
    return c.isLetter() || c == QLatin1Char('$') || c == QLatin1Char('_');
}

bool isIdentifierPart(QChar c)
{
    return isIdentifierStart(c) || c.isDigit();
}

// Words that read nothing but their operands: an expression made of these,
// literals, operators and published "$" names gives the same colour for the
// same row and skin.
const QSet<QString>& pureWords()
{
    static const QSet<QString> words = {
        QStringLiteral("true"), QStringLiteral("false"), QStringLiteral("null"),
        QStringLiteral("undefined"), QStringLiteral("NaN"), QStringLiteral("Infinity"),
        QStringLiteral("typeof"), QStringLiteral("instanceof"), QStringLiteral("in"),
        QStringLiteral("void"), QStringLiteral("function"), QStringLiteral("return"),
        QStringLiteral("if"), QStringLiteral("else"), QStringLiteral("var"),
        QStringLiteral("let"), QStringLiteral("const"), QStringLiteral("Math"),
        QStringLiteral("Number"), QStringLiteral("String"), QStringLiteral("Boolean"),
        QStringLiteral("parseInt"), QStringLiteral("parseFloat"), QStringLiteral("isNaN"),
        QStringLiteral("isFinite"),
    };
    return words;
}

// Members that reach state or code: a random number, the clock, the
// constructor of functions.
const QSet<QString>& impureMembers()
{
    static const QSet<QString> members = {
        QStringLiteral("random"), QStringLiteral("now"), QStringLiteral("constructor"),
        QStringLiteral("__proto__"), QStringLiteral("prototype"), QStringLiteral("__defineGetter__"),
        QStringLiteral("__defineSetter__"), QStringLiteral("call"), QStringLiteral("apply"),
        QStringLiteral("bind"),
    };
    return members;
}

QChar previousSignificant(const QString& text, int position)
{
    for (int i = position - 1; i >= 0; --i) {
        if (!text.at(i).isSpace())
            return text.at(i);
    }
    return QChar();
}

} // namespace

TFCellStyleEngine* TFCellStyleEngine::instance()
{
    // Lives to the end of the process, like the engine it makes.
    static TFCellStyleEngine* const engine = new TFCellStyleEngine;
    return engine;
}

QJSEngine* TFCellStyleEngine::engine()
{
    if (!m_engine) {
        m_engine = new QJSEngine;
        m_engine->globalObject().setProperty(QStringLiteral("$skin"), m_skin);
    }
    return m_engine;
}

void TFCellStyleEngine::setSkin(const QString& skinId)
{
    m_skin = skinId;
    ++m_generation;
    // A field named "skin" publishes "$skin" too; whatever the engine holds
    // now, the next row is published afresh.
    m_published = false;
    if (m_engine)
        m_engine->globalObject().setProperty(QStringLiteral("$skin"), skinId);
}

TFCellStyleEngine::ExpressionInfo TFCellStyleEngine::inspect(const QString& expression)
{
    ExpressionInfo info;
    info.compilable = true;
    info.pure = true;
    QVector<QChar> brackets;
    const int size = expression.size();
    for (int i = 0; i < size;) {
        const QChar c = expression.at(i);
        if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            int j = i + 1;
            while (j < size && expression.at(j) != c) {
                if (expression.at(j) == QLatin1Char('\\'))
                    ++j;
                ++j;
            }
            if (j >= size)
                info.compilable = false;
            i = j + 1;
            continue;
        }
        if (c == QLatin1Char('/') || c == QLatin1Char('`')) {
            // Regular expressions, comments and templates may hide brackets
            // from this scan; such expressions are evaluated as written.
            info.compilable = false;
            info.pure = false;
            ++i;
            continue;
        }
        if (c.isDigit() || (c == QLatin1Char('.') && i + 1 < size && expression.at(i + 1).isDigit())) {
            int j = i + 1;
            while (j < size && (isIdentifierPart(expression.at(j)) || expression.at(j) == QLatin1Char('.')))
                ++j;
            i = j;
            continue;
        }
        if (isIdentifierStart(c)) {
            int j = i + 1;
            while (j < size && isIdentifierPart(expression.at(j)))
                ++j;
            const QString word = expression.mid(i, j - i);
            const bool member = previousSignificant(expression, i) == QLatin1Char('.');
            if (word == QLatin1String("eval"))
                info.compilable = false;
            if (member) {
                if (impureMembers().contains(word))
                    info.pure = false;
            } else if (word.startsWith(QLatin1Char('$'))) {
                info.globals.insert(word);
            } else if (!pureWords().contains(word)) {
                info.pure = false;
            }
            i = j;
            continue;
        }
        if (c == QLatin1Char('=')) {
            const QChar before = i > 0 ? expression.at(i - 1) : QChar();
            const QChar after = i + 1 < size ? expression.at(i + 1) : QChar();
            const bool comparison = after == QLatin1Char('=') || after == QLatin1Char('>')
                || before == QLatin1Char('=') || before == QLatin1Char('!')
                || ((before == QLatin1Char('<') || before == QLatin1Char('>'))
                    && (i < 2 || expression.at(i - 2) != before));
            if (!comparison)
                info.pure = false;
        } else if ((c == QLatin1Char('+') || c == QLatin1Char('-')) && i + 1 < size
                   && expression.at(i + 1) == c) {
            info.pure = false;
        } else if (c == QLatin1Char('(') || c == QLatin1Char('[') || c == QLatin1Char('{')) {
            brackets.append(c);
        } else if (c == QLatin1Char(')') || c == QLatin1Char(']') || c == QLatin1Char('}')) {
            const QChar open = c == QLatin1Char(')') ? QLatin1Char('(')
                             : c == QLatin1Char(']') ? QLatin1Char('[') : QLatin1Char('{');
            if (brackets.isEmpty() || brackets.last() != open)
                info.compilable = false;
            else
                brackets.removeLast();
        }
        ++i;
    }
    if (!brackets.isEmpty())
        info.compilable = false;
    if (!info.compilable)
        info.pure = false;
    return info;
}

TFCellStyleEngine::Compiled& TFCellStyleEngine::compiled(const QString& expression)
{
    auto it = m_compiled.find(expression);
    if (it != m_compiled.end())
        return *it;

    Compiled entry;
    entry.info = inspect(expression);
    entry.program = QStringLiteral("(%1)").arg(expression);
    if (entry.info.compilable) {
        // Brackets are balanced outside strings, so the expression cannot
        // close the parenthesis around it: as the body of an arrow function,
        // which sees the same globals and the same "this", it gives what the
        // bare text gives.
        const QJSValue function = engine()->evaluate(
            QStringLiteral("(() => (%1))").arg(expression), QString(), 1);
        if (function.isCallable())
            entry.function = function;
        else
            entry.info.pure = false;
    }
    return *m_compiled.insert(expression, entry);
}

void TFCellStyleEngine::publish(const void* publisher, const RowData& row, const QVector<QString>& names)
{
    if (m_published && m_publisher == publisher && m_publishedRow.constBegin() == row.constBegin()
        && m_publishedRow.size() == row.size() && m_publishedNames.constData() == names.constData()
        && m_publishedNames.size() == names.size())
        return;

    QJSValue global = engine()->globalObject();
    static const QString bareName = QStringLiteral("$");
    for (int i = 0; i < row.size() - 1; ++i)
        global.setProperty(i < names.size() ? names.at(i) : bareName, row.at(i).value.toString());
    m_publisher = publisher;
    m_publishedRow = row;
    m_publishedNames = names;
    m_published = true;
}

QVariant TFCellStyleEngine::textColor(const void* publisher, const RowData& row,
                                      const QVector<QString>& names, const QString& expression)
{
    Compiled& entry = compiled(expression);
    publish(publisher, row, names);

    QJSValue result = entry.function.isCallable()
        ? entry.function.call()
        : engine()->evaluate(entry.program, QString(), 1);
    if (result.isCallable())
        result = result.call();

    if (!entry.info.pure) {
        // It may have written to the engine: publish again next time, and
        // let no kept colour outlive it.
        m_published = false;
        ++m_generation;
    }

    if (result.isError() || result.isNull() || result.isUndefined() || !result.isString())
        return QVariant();
    const QString text = result.toString();
    if (text.isEmpty() || text == QLatin1String("$use_default_color"))
        return QVariant();
    return QColor(text);
}
