#pragma once

#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariant>

namespace TFTableModelData {

// One cell of the table. A cell under a column carries that column's
// formatting, alignment and link settings with it, so the model answers most
// roles from the cell alone; a cell of a row key that no column names keeps
// the defaults below.
struct tagCellValue
{
    QString fieldName;
    QString valueType;
    qint32 textAlignment = 0;
    QString url;
    QString formatString;
    qint64 prevUnitFactor = 1;
    qint64 showUnitFactor = 1;
    double secuId = 0;
    qint64 baseShowUnitFactor = -1;
    qint32 unitCategory = -1;
    QString columnType;
    qint32 captionShowType = -1;
    QVariant value;
};

} // namespace TFTableModelData

Q_DECLARE_TYPEINFO(TFTableModelData::tagCellValue, Q_MOVABLE_TYPE);

// A row: one cell per leaf of the header tree in leaf order, then one cell
// per further key of the raw row.
typedef QList<TFTableModelData::tagCellValue> RowData;

Q_DECLARE_METATYPE(TFTableModelData::tagCellValue)
Q_DECLARE_METATYPE(RowData)

namespace TFTableModelData {

// Rows travel in a QVariant under a model role and through queued signals;
// registering twice is harmless.
inline int registerRowDataType()
{
    static const int id = qRegisterMetaType<RowData>("RowData");
    return id;
}

} // namespace TFTableModelData
