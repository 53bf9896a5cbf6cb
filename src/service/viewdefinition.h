#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

namespace SubjectService {

// One column or band as a view file writes it.
struct ColumnSpec
{
    bool isBand = false;
    QString field;          // field of the data, or the band's own name
    QString caption;
    QString valueType;      // String, Decimal, Int32, DateTime, ...
    int width = 0;
    QString format;
    int align = 0;
    bool hidden = false;
    QString status;         // vw_sts of a visible field: "1", or "6"
    QString columnType;     // as the wire spells it
    QString url;
    int unitCategory = 0;
    qint64 showUnitFactor = 0;
    qint64 prevUnitFactor = 0;
    QString showUnit;
    int captionShowType = 0;
    QString expression;
    QString cellStyle;
    bool noSort = false;
    QString statExpression;
    QList<ColumnSpec> children;
};

// A key of the request body that the view takes as a data-source parameter.
struct ParameterSpec
{
    QString key;
    QString column;         // compared with the value by op
    QString op = QStringLiteral("==");
    QStringList search;     // "keywords": columns searched with like
    QString blockColumn;    // "filterBlock": column of the security in block_member
};

struct ChildSpec
{
    qint64 view = 0;
    QString caption;
    QString link;           // Propertyparams, e.g. "A.SECU_ID=数据源.SECU_ID"
};

// A cross view: one row per value of the row fields, and for each value of
// the across field one band of the value fields, named "<value>__<FIELD>".
struct CrossSpec
{
    QString across;
    QString bandCaption = QStringLiteral("%1");
    QList<ColumnSpec> rows;
    QList<ColumnSpec> values;
    QList<ColumnSpec> totals;
};

struct ViewDefinition
{
    qint64 id = 0;
    QString name;
    qint64 topic = 0;
    QString source;
    QString defaultOrder;           // the service's order when the request gives none
    QJsonObject properties;         // View_Config rows that carry a plain value
    QList<ColumnSpec> columns;
    QStringList dataFields;         // delivered in the rows without a column
    QMap<QString, ParameterSpec> parameters;
    QJsonArray filters;
    QList<ChildSpec> children;
    QJsonObject chart;
    bool hasCross = false;
    CrossSpec cross;
    QString fileName;

    bool isChart() const { return !chart.isEmpty(); }
    // Every field that the rows carry from the source, in column order.
    QStringList sourceFields() const;
    QList<const ColumnSpec *> leaves() const;

    static bool fromJson(const QJsonObject &object, ViewDefinition *view, QString *error);
};

} // namespace SubjectService
