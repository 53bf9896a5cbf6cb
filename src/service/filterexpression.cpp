#include "filterexpression.h"

#include <QJsonArray>

namespace SubjectService {
namespace FilterExpression {

namespace {

class Scanner
{
public:
    explicit Scanner(const QString &text) : m_text(text) {}

    void skipSpaces()
    {
        while (m_pos < m_text.size() && m_text.at(m_pos).isSpace())
            ++m_pos;
    }
    bool atEnd() const { return m_pos >= m_text.size(); }
    int position() const { return m_pos; }

    bool take(QLatin1String token)
    {
        if (m_text.midRef(m_pos, token.size()) == token) {
            m_pos += token.size();
            return true;
        }
        return false;
    }

    // Letters, digits and '_', not starting with a digit for a field.
    QString identifier(bool mayStartWithDigit)
    {
        const int start = m_pos;
        while (m_pos < m_text.size()) {
            const QChar c = m_text.at(m_pos);
            const bool ascii = c.unicode() < 128;
            if (!(ascii && (c.isLetterOrNumber() || c == QLatin1Char('_'))))
                break;
            if (m_pos == start && !mayStartWithDigit && c.isDigit())
                break;
            ++m_pos;
        }
        return m_text.mid(start, m_pos - start);
    }

    QString word()
    {
        const int start = m_pos;
        while (m_pos < m_text.size() && m_text.at(m_pos).unicode() < 128 && m_text.at(m_pos).isLetter())
            ++m_pos;
        return m_text.mid(start, m_pos - start);
    }

private:
    const QString &m_text;
    int m_pos = 0;
};

QString takeOperator(Scanner &s)
{
    static const QLatin1String symbols[] = {QLatin1String(">="), QLatin1String("<="),
                                            QLatin1String("=="), QLatin1String("!="),
                                            QLatin1String("&&"), QLatin1String(">"),
                                            QLatin1String("<")};
    for (const QLatin1String &symbol : symbols) {
        if (s.take(symbol))
            return symbol;
    }
    const QString word = s.word().toLower();
    if (word == QLatin1String("like") || word == QLatin1String("in") || word == QLatin1String("nin"))
        return word;
    return {};
}

QString errorAt(const Scanner &s, const QString &what)
{
    return QStringLiteral("filter does not parse at %1: %2").arg(s.position()).arg(what);
}

} // namespace

bool parse(const QString &text, QList<FilterCondition> *conditions, QString *error)
{
    conditions->clear();
    Scanner s(text);
    s.skipSpaces();
    if (s.atEnd())
        return true;
    for (;;) {
        if (!s.take(QLatin1String("("))) {
            *error = errorAt(s, QStringLiteral("'(' expected"));
            return false;
        }
        s.skipSpaces();
        FilterCondition condition;
        condition.field = s.identifier(false);
        if (condition.field.isEmpty()) {
            *error = errorAt(s, QStringLiteral("field name expected"));
            return false;
        }
        s.skipSpaces();
        if (s.take(QLatin1String("||"))) {
            *error = errorAt(s, QStringLiteral("operator || is not supported"));
            return false;
        }
        condition.op = takeOperator(s);
        if (condition.op.isEmpty()) {
            *error = errorAt(s, QStringLiteral("operator expected"));
            return false;
        }
        s.skipSpaces();
        if (!s.take(QLatin1String(":"))) {
            *error = errorAt(s, QStringLiteral("':' and a parameter name expected"));
            return false;
        }
        condition.param = s.identifier(true);
        if (condition.param.isEmpty()) {
            *error = errorAt(s, QStringLiteral("parameter name expected"));
            return false;
        }
        s.skipSpaces();
        if (!s.take(QLatin1String(")"))) {
            *error = errorAt(s, QStringLiteral("')' expected"));
            return false;
        }
        conditions->append(condition);
        s.skipSpaces();
        if (s.atEnd())
            return true;
        if (s.take(QLatin1String("||"))) {
            *error = errorAt(s, QStringLiteral("operator || is not supported"));
            return false;
        }
        if (!s.take(QLatin1String("&&"))) {
            *error = errorAt(s, QStringLiteral("'&&' expected between conditions"));
            return false;
        }
        s.skipSpaces();
    }
}

static QString likePattern(const QString &text)
{
    if (text.contains(QLatin1Char('%')))
        return text;
    QString escaped = text;
    escaped.replace(QLatin1String("\\"), QLatin1String("\\\\"));
    escaped.replace(QLatin1String("_"), QLatin1String("\\_"));
    return QLatin1Char('%') + escaped + QLatin1Char('%');
}

bool translateCondition(const ColumnInfo &column, const QString &op, const QJsonValue &value,
                        SqlFragment *out, QString *error)
{
    const QString quoted = QLatin1Char('"') + column.name + QLatin1Char('"');
    out->sql.clear();
    out->bindings.clear();

    if (op == QLatin1String("in") || op == QLatin1String("nin")) {
        QJsonArray values;
        if (value.isArray())
            values = value.toArray();
        else
            values.append(value); // "nin" with one value comes as a scalar
        const bool negate = op == QLatin1String("nin");
        if (values.isEmpty()) {
            out->sql = negate ? QStringLiteral("1") : QStringLiteral("0");
            return true;
        }
        QStringList marks;
        for (const QJsonValue &v : qAsConst(values)) {
            const QVariant bound = coerceForColumn(v, column.kind, column.name, error);
            if (!bound.isValid())
                return false;
            out->bindings.append(bound);
            marks.append(QStringLiteral("?"));
        }
        out->sql = quoted + (negate ? QLatin1String(" NOT IN (") : QLatin1String(" IN ("))
                   + marks.join(QLatin1Char(',')) + QLatin1Char(')');
        return true;
    }

    QJsonValue scalar = value;
    if (value.isArray()) {
        const QJsonArray array = value.toArray();
        if (array.size() != 1) {
            *error = QStringLiteral("value of wrong type for %1: operator %2 takes one value")
                         .arg(column.name, op);
            return false;
        }
        scalar = array.at(0);
    }

    if (op == QLatin1String("&&")) {
        // A flag field: the row matches when it shares a bit with the value.
        if (column.kind != ColumnKind::Integer) {
            *error = QStringLiteral("value of wrong type for %1: operator && needs a whole-number field")
                         .arg(column.name);
            return false;
        }
        const QVariant bound = coerceForColumn(scalar, column.kind, column.name, error);
        if (!bound.isValid())
            return false;
        if (bound.userType() != QMetaType::LongLong) {
            *error = QStringLiteral("value of wrong type for %1: operator && takes a whole number").arg(column.name);
            return false;
        }
        out->sql = QLatin1Char('(') + quoted + QLatin1String(" & ?) <> 0");
        out->bindings.append(bound);
        return true;
    }

    if (op == QLatin1String("like")) {
        if (!scalar.isString() && !scalar.isDouble()) {
            *error = QStringLiteral("value of wrong type for %1: a text is expected").arg(column.name);
            return false;
        }
        const QString text = scalar.isString() ? scalar.toString() : QString::number(scalar.toDouble());
        out->sql = quoted + QLatin1String(" LIKE ? ESCAPE '\\'");
        out->bindings.append(likePattern(text));
        return true;
    }

    static const QMap<QString, QString> comparisons = {
        {QStringLiteral(">"), QStringLiteral(">")},   {QStringLiteral(">="), QStringLiteral(">=")},
        {QStringLiteral("<"), QStringLiteral("<")},   {QStringLiteral("<="), QStringLiteral("<=")},
        {QStringLiteral("=="), QStringLiteral("=")},  {QStringLiteral("!="), QStringLiteral("<>")}};
    const auto it = comparisons.constFind(op);
    if (it == comparisons.constEnd()) {
        *error = QStringLiteral("unknown operator: %1").arg(op);
        return false;
    }
    const QVariant bound = coerceForColumn(scalar, column.kind, column.name, error);
    if (!bound.isValid())
        return false;
    out->sql = quoted + QLatin1Char(' ') + it.value() + QLatin1String(" ?");
    out->bindings.append(bound);
    return true;
}

bool translate(const QList<FilterCondition> &conditions, const QJsonObject &filterParams,
               const ColumnSet &columns, SqlFragment *out, QString *error)
{
    out->sql.clear();
    out->bindings.clear();
    QStringList parts;
    for (const FilterCondition &condition : conditions) {
        const auto column = columns.constFind(condition.field.toUpper());
        if (column == columns.constEnd()) {
            *error = QStringLiteral("unknown field: %1").arg(condition.field);
            return false;
        }
        if (!filterParams.contains(condition.param)) {
            *error = QStringLiteral("parameter :%1 has no value in filterParams").arg(condition.param);
            return false;
        }
        SqlFragment piece;
        if (!translateCondition(column.value(), condition.op, filterParams.value(condition.param),
                                &piece, error))
            return false;
        parts.append(QLatin1Char('(') + piece.sql + QLatin1Char(')'));
        out->bindings.append(piece.bindings);
    }
    out->sql = parts.join(QLatin1String(" AND "));
    return true;
}

} // namespace FilterExpression
} // namespace SubjectService
