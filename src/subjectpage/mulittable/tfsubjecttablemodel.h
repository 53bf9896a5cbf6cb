#pragma once

#include "jsonparser/headerfieldinfo.h"
#include "jsonparser/tftablemodeldata.h"

#include <QAbstractTableModel>
#include <QFont>
#include <QHash>
#include <QStringList>
#include <QVector>

class TFTreeStruct;

// The item model behind a table's grid. Rows arrive ready from the parser and
// the columns from the band tree: cell i of a row belongs to leaf i. The model
// decides how a cell reads: its text, tooltip, alignment, colour, sort value
// and link.
class TFSubjectTableModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    enum Role {
        FieldNameRole = 266,
        RowDataRole = 267,
        LinkRole = 268,
        RawValueRole = 269,
        SecuIdRole = 270,
        HoverColorRole = 271,
        SortValueRole = 274
    };

    explicit TFSubjectTableModel(QObject* parent = nullptr);
    ~TFSubjectTableModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    void setHeader(TFTreeStruct* header);
    TFTreeStruct* header() const { return m_header; }

    void setRows(const QList<RowData>& rows);
    void rows(QList<RowData>& out) const { out = m_rows; }
    void clear();

    // The unit the user chose: its exponent and category. A new model shows
    // the configured units (factor 0, category 0).
    void setUnit(int exponent, int unitCategory);
    int unitFactor() const { return m_unitFactor; }
    int unitCategory() const { return m_unitCategory; }

    QFont font() const { return m_font; }
    void setFont(const QFont& font) { m_font = font; }

    QVariant sortValue(const TFTableModelData::tagCellValue& cell) const;

public slots:
    // The display values of every row, whatever the selection.
    void getAllSelectedData(QList<QList<QVariant>>* const list);

private:
    QVariant displayText(const TFTableModelData::tagCellValue& cell, int column) const;
    QVariant textAlignment(const TFTableModelData::tagCellValue& cell) const;
    QVariant textColor(int row, int column) const;
    void forgetKeptValues();
    QString dateText(qint64 msecs, const QString& format, int column) const;

    TFTreeStruct* m_header = nullptr;
    QStringList m_captions;
    QList<RowData> m_rows;
    QFont m_font;
    QHash<int, HeaderFieldInfo> m_leafRecords;
    int m_unitFactor = 0;
    int m_unitCategory = 0;

    // Taken from the leaf records at setHeader: the global name each cell is
    // published under, and per column the colour expression with what it
    // needs of a row before its colour can be kept.
    struct ColorColumn
    {
        QString expression;
        bool keepable = false;      // same row and skin give the same colour
        int cellsNeeded = 0;        // the row must publish this many cells
    };
    QVector<QString> m_publishNames;
    QVector<ColorColumn> m_colorColumns;

    // Colours already worked out for (row, column), valid for one engine
    // generation and one set of rows.
    mutable QHash<quint64, QVariant> m_colors;
    mutable quint64 m_colorGeneration = 0;

    // Date texts already made, per column and format: turning milliseconds
    // into local time is the costliest step of a cell's text, and a data set
    // repeats its dates. Kept for one set of rows and one header.
    struct DateTexts
    {
        QString format;
        QHash<qint64, QString> texts;
    };
    mutable QVector<DateTexts> m_dateTexts;

    // What a type or format text means, worked out once per text. An entry
    // keeps its text, so a text found at the same address is the same text:
    // shared strings never change in place.
    enum ValueKind { DecimalValue, StringValue, DateTimeValue, OtherValue };
    struct KindOfType
    {
        QString type;
        ValueKind kind;
    };
    struct ColumnFormat
    {
        QString columnType;
        QString formatString;
        bool unitColumn = false;
        int precision = 2;
    };
    ValueKind kindOf(const QString& valueType) const;
    const ColumnFormat& formatOf(int column, const HeaderFieldInfo& record) const;
    mutable QVector<KindOfType> m_kinds;
    mutable QVector<ColumnFormat> m_formats;
};
