#pragma once

#include <QHash>
#include <QString>
#include <QVariant>
#include <QVariantMap>

#include <functional>

class ExpressionParse;

// Computes the cell of a column that is not delivered but derived from its
// row (the column's UnboundExpression). Four aggregate forms run over the
// row's keys that end in a field suffix, "SUM([ROE])" and the like; any other
// formula goes to the expression parser with the row as its variables.
//
// The forms keep what configurations written for them rely on: the pattern
// knows "AVERAGE" but the computation "AVGERAGE", so "AVERAGE" gives a null
// cell and "AVGERAGE" goes to the parser whole; "GEOMEAN" raises the product
// to the power of the count; every key counts except one that is exactly the
// suffix.
class TFUnboundExpression
{
public:
    // The parser is asked for only when a formula needs it, so rows without
    // such formulas never make one. It is not owned.
    using ParserSource = std::function<ExpressionParse*()>;
    explicit TFUnboundExpression(ParserSource parserSource);

    QVariant evaluate(const QString& expression, const QVariantMap& row);

private:
    struct Form
    {
        bool aggregate = false;     // the pattern matched
        QString function;           // as written
        QString suffix;
        QString suffixKey;          // "__" + suffix
    };
    const Form& formOf(const QString& expression);

    ParserSource m_parserSource;
    // What the pattern makes of each formula text; formulas repeat on every
    // row, the match does not change.
    QHash<QString, Form> m_forms;
};
