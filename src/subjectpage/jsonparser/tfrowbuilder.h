#pragma once

#include "tftablemodeldata.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QVariantMap>
#include <QVector>

#include <functional>

class TFTreeStruct;
class TFUnboundExpression;

namespace TFSubject {

// Turns raw rows (field name to value) into cell rows under the leaves of a
// header tree: one cell per leaf, in leaf order, carrying that column's
// settings, then one cell per further key of the row, in key order. Each
// leaf's settings are copied into a template once, so a cell costs a copy of
// shared texts and one value.
class TFRowBuilder
{
public:
    // The value type that a further key's reference record gives.
    using ValueTypeOf = std::function<QString(const QString& fieldName)>;

    TFRowBuilder(const QList<TFTreeStruct*>& leaves, TFUnboundExpression* unbound,
                 ValueTypeOf valueTypeOf);

    // The export gives further cells the letter of their value's type
    // number instead; nothing reads it.
    void setTypeLetterForFurtherCells(bool on) { m_typeLetter = on; }

    RowData build(const QVariantMap& row);
    QList<RowData> build(const QList<QVariantMap>& rows);

    QStringList leafFieldNames() const;

private:
    struct Slot
    {
        QString fieldName;
        int leaf = 0;
    };

    QVector<TFTableModelData::tagCellValue> m_templates;
    QVector<bool> m_computed;               // a decimal cell with an expression
    QVector<QString> m_expressions;
    QVector<Slot> m_sorted;                 // leaf field names in key order
    TFUnboundExpression* m_unbound;
    ValueTypeOf m_valueTypeOf;
    QHash<QString, QString> m_furtherTypes;
    bool m_typeLetter = false;
};

// A cell as the workbook takes it: numbers formatted and read back, texts
// trimmed, dates as text; an invalid value is one blank.
QVariant cellToPlainValue(const TFTableModelData::tagCellValue& cell);

} // namespace TFSubject
