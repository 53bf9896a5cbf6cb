#include "elementreadfactory.h"
#include "tfelement.h"

ElementReadFactory::ElementReadFactory(QObject *parent)
    : QObject(parent)
{
    for (QChar c : QStringLiteral("(),:"))
        m_splitters.insert(c);
    for (QChar c : QStringLiteral("+-*/%"))
        m_operators.insert(c);
    for (QChar c : QStringLiteral("+-*/%<>=&|?:#$(),[]{}\"\r\t\n"))
        m_variableStops.insert(c);
}

void ElementReadFactory::setSource(const QString &source)
{
    // m_lastChar stays: see the class comment.
    m_source = source;
}

TFElement *ElementReadFactory::readElement(int position)
{
    if (position < 0 || position >= m_source.size())
        return nullptr;

    const QChar c = m_source.at(position);
    TFElement *element = nullptr;
    if (c.isDigit()) {
        int end = position;
        while (end + 1 < m_source.size()
               && (m_source.at(end + 1).isDigit() || m_source.at(end + 1) == QLatin1Char('.')))
            ++end;
        element = new NumberTypeReader(m_source.mid(position, end - position + 1), end);
    } else if (c.isLetter() && (m_lastChar.isNull() || isSplitter(m_lastChar))) {
        element = readFunction(position);
    } else if (c == QLatin1Char('[')) {
        element = readString(position);
    } else if (isSplitter(c)) {
        element = new SplitorTypeReader(QString(c), position);
    } else if (isOperator(c)) {
        element = new OperatorTypeReader(QString(c), position);
    } else {
        element = readVariable(position);
    }

    const int end = element->endPosition();
    if (end >= 0 && end < m_source.size())
        m_lastChar = m_source.at(end);
    return element;
}

// A call at the start or behind a splitter takes everything up to its
// closing parenthesis, nested calls included. Without a balancing ")" it
// takes the rest of the source.
TFElement *ElementReadFactory::readFunction(int position) const
{
    int opened = 0;
    int closed = 0;
    int end = position;
    for (; end < m_source.size(); ++end) {
        const QChar c = m_source.at(end);
        if (c == QLatin1Char('(')) {
            ++opened;
        } else if (c == QLatin1Char(')')) {
            ++closed;
            if (opened == closed)
                break;
        }
    }
    if (end >= m_source.size())
        end = m_source.size() - 1;
    return new FunctionTypeReader(m_source.mid(position, end - position + 1), end);
}

TFElement *ElementReadFactory::readString(int position) const
{
    int close = m_source.indexOf(QLatin1Char(']'), position + 1);
    if (close < 0) {
        return new StringTypeReader(m_source.mid(position + 1), m_source.size() - 1);
    }
    return new StringTypeReader(m_source.mid(position + 1, close - position - 1), close);
}

// A variable that starts on a stop character is empty and ends before its
// own position; the parser has to notice that it cannot advance.
TFElement *ElementReadFactory::readVariable(int position) const
{
    int end = position;
    while (end < m_source.size() && !isVariableStop(m_source.at(end)))
        ++end;
    return new VariableTypeReader(m_source.mid(position, end - position), end - 1);
}
