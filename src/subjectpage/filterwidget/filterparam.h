#pragma once

#include <QList>
#include <QString>
#include <QVariant>

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

} // namespace FilterParam
