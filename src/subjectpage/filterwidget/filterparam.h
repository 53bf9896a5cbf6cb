#pragma once

#include <QList>
#include <QString>
#include <QVariant>

class QDateTime;

// What the filter bar hands to a request: the values of its controls, the
// top-level body keys and the terms of the filter expression.
namespace FilterParam {

// What one control reports.
struct Cntrl
{
    int index = 0;              // place inside an expanded control; the number in the parameter name
    bool multiField = false;    // key, value and op are comma-separated lists
    QString op;                 // operator as the service spells it
    QString aux;
    QString caption;
    QString objName;            // filled by the bar from the control's object name
    QString key;                // field or argument name; empty means "contributes nothing"
    QString valueType;
    QVariant value;
    bool dataSourceFilter = false;
};

// A top-level key of the request body.
struct DataSourceFilter
{
    QString key;
    QVariant value;
};

// One term of the request's filter expression: (fieldName op :paramName),
// with the bound value(s) under paramName in filterParams.
struct CustomFilter
{
    QString fieldName;
    QString paramName;
    QString op;
    QList<QVariant> values;
};

// The service's word for an operator of the configuration: ">=", ">", "<",
// "<=" stand as they are, "=" is "==", "<>" is "!=", "LIKE", "IN", "NotIn",
// "and" and "or" are "like", "in", "nin", "&&" and "||". The words are
// compared exactly; any other word is "==".
QString serviceOperator(const QString &configOperator);

// A date and time as the service reads it: "/Date(<ms since the epoch><sign><hhmm>)",
// the offset being that of the system's time zone at that moment.
QString serviceDateText(const QDateTime &dateTime);

// Reads a dynamic default, "=$name([Caption])": a control whose value is
// the function name applied to the value of the control with that caption.
// Gives false for any other text; the match is case-sensitive and anchored
// at the start only.
bool readDynamicDefault(const QString &text, QString *function, QString *caption);

} // namespace FilterParam
