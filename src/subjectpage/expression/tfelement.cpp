#include "tfelement.h"

#include <QStringList>

TFElement::TFElement(int type, QObject *parent)
    : QObject(parent), m_type(type)
{
}

TFElement::TFElement(int type, const QString &text, int endPosition, QObject *parent)
    : QObject(parent), m_text(text), m_endPosition(endPosition), m_type(type)
{
}

const QStringList &OperatorTypeReader::operatorList()
{
    static const QStringList operators = {
        QStringLiteral("+"), QStringLiteral("-"), QStringLiteral("*"),
        QStringLiteral("/"), QStringLiteral("%")
    };
    return operators;
}

OperatorTypeReader::OperatorTypeReader(const QString &text, int endPosition, QObject *parent)
    : TFElement(Operator, text, endPosition, parent)
    , m_operatorIndex(text.isEmpty() ? -1 : operatorList().indexOf(text))
{
}
