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

struct CheckedPiece
{
    QString text;
    int type = 0;
    bool isSplice = false;
};

// Recursive descent over the pieces:
//   sum     := product (("+" | "-") product)*
//   product := unary (("*" | "/" | "%") unary)*
//   unary   := ("+" | "-") unary | primary
//   primary := number | splice | "(" sum ")"
// Nesting is bounded so that a hostile formula cannot exhaust the stack; a
// deeper one simply takes the slow road.
class ArithmeticChecker
{
public:
    explicit ArithmeticChecker(const QVector<CheckedPiece> &elements) : m_elements(elements) {}

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
        const CheckedPiece &element = m_elements.at(m_position);
        if (element.isSplice) {
            ++m_position;
            return true;
        }
        if (element.type == TFElement::Number) {
            if (!isDecimalLiteral(element.text))
                return false;
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

    const QVector<CheckedPiece> &m_elements;
    int m_position = 0;
};

} // namespace

// Merges words into calls as the parser will once every field is a number,
// and gives the pieces of the glued text. A field inside a merged call, or a
// word that is no call, is not arithmetic.
bool CompiledFormula::buildPieces(QVector<Piece> &pieces)
{
    auto addSplice = [&](Splice::Kind kind, const QString &text) {
        Splice splice;
        splice.kind = kind;
        splice.text = text;
        splice.afterMinus = !pieces.isEmpty() && pieces.constLast().text == QLatin1String("-");
        Piece piece;
        piece.splice = m_splices.size();
        m_splices.append(splice);
        pieces.append(piece);
    };

    for (int i = 0; i < elements.size(); ++i) {
        const FormulaElement &element = elements.at(i);
        switch (element.type) {
        case TFElement::String:
            addSplice(Splice::Field, element.text);
            break;
        case TFElement::Function:
            addSplice(Splice::Call, element.text);
            break;
        case TFElement::Variable: {
            if (i + 1 >= elements.size() || elements.at(i + 1).type == TFElement::String
                || elements.at(i + 1).text != QLatin1String("("))
                return false;
            QString call = element.text + QLatin1Char('(');
            ++i;
            while (i + 1 < elements.size()) {
                ++i;
                if (elements.at(i).type == TFElement::String)
                    return false;
                call += elements.at(i).text;
                if (elements.at(i).text == QLatin1String(")"))
                    break;
            }
            addSplice(Splice::Call, call);
            break;
        }
        default:
            pieces.append({ element.text, element.type, -1 });
            break;
        }
    }
    return true;
}

QString CompiledFormula::functionSource()
{
    m_compileTried = true;
    QVector<Piece> pieces;
    if (!buildPieces(pieces)) {
        m_splices.clear();
        return QString();
    }

    QVector<CheckedPiece> checked;
    checked.reserve(pieces.size());
    for (const Piece &piece : pieces)
        checked.append({ piece.text, piece.type, piece.splice >= 0 });
    // The glued text puts pieces side by side with nothing between them,
    // so "+" "+" would reach the engine as "++": that is not arithmetic.
    for (int i = 1; i < checked.size(); ++i) {
        const CheckedPiece &previous = checked.at(i - 1);
        const CheckedPiece &current = checked.at(i);
        if (previous.type == TFElement::Operator && current.type == TFElement::Operator
            && previous.text == current.text
            && (current.text == QLatin1String("+") || current.text == QLatin1String("-"))) {
            m_splices.clear();
            return QString();
        }
    }
    if (!ArithmeticChecker(checked).check()) {
        m_splices.clear();
        return QString();
    }

    QStringList parameters;
    QString body;
    for (const Piece &piece : pieces) {
        if (piece.splice < 0) {
            body += piece.text;
            continue;
        }
        const QString name = QStringLiteral("p%1").arg(piece.splice);
        parameters.append(name);
        body += name;
    }
    return QStringLiteral("(function(%1){return %2;})").arg(parameters.join(QLatin1Char(',')), body);
}
