#pragma once

#include "servicevalue.h"

#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QVariant>

namespace SubjectService {

// One "(FIELD OP :PARAM)" of a request's filter text.
struct FilterCondition
{
    QString field;
    QString op;     // one of > >= < <= == != like in nin &&
    QString param;
};

// The columns that a filter may name, by upper-cased name, with the name as
// the database spells it.
struct ColumnInfo
{
    QString name;
    ColumnKind kind = ColumnKind::Text;
};
using ColumnSet = QMap<QString, ColumnInfo>;

// A piece of WHERE clause and the values it binds, in order of the '?'s.
struct SqlFragment
{
    QString sql;
    QVariantList bindings;
};

namespace FilterExpression {

// Parses the filter text of a request: conditions in parentheses joined by
// " && ". An empty text gives no conditions. Returns false with a message on
// any text that does not follow that form.
bool parse(const QString &text, QList<FilterCondition> *conditions, QString *error);

// Turns the conditions into SQL over the given columns, binding the values of
// filterParams. Field names are looked up among the columns and written as the
// database spells them; no value ever enters the SQL text.
bool translate(const QList<FilterCondition> &conditions, const QJsonObject &filterParams,
               const ColumnSet &columns, SqlFragment *out, QString *error);

// One comparison of a column with a bound value, shared with the data-source
// parameters of a view.
bool translateCondition(const ColumnInfo &column, const QString &op, const QJsonValue &value,
                        SqlFragment *out, QString *error);

} // namespace FilterExpression
} // namespace SubjectService
