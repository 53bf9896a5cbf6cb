#pragma once

#include <QList>
#include <QString>
#include <QVariant>

#include <functional>

class TFTreeStruct;
class TFXlsxDocument;
struct TFXlsxFormat;

// Writes a table to a workbook: the band header as merged cells over the
// rows of the header, and the rows as typed cells below it, so that the
// sheet has the header of the screen. It holds no state.
//
// The header and the rows do not always line up: a hidden leaf keeps its
// column in the header, left empty, while the rows close it up.
class TFExcelWritter
{
public:
    // Told the rows written so far and the total; false stops the writing.
    using Progress = std::function<bool(int written, int total)>;

    // Bands and columns in bold, centred; a band is merged over the columns
    // of its leaves. False only when the document is not open.
    static bool writeHeader(TFXlsxDocument &doc, TFTreeStruct *header);
    // The rows from the row of the header's depth on, hidden leaves left
    // out. False when the document is not open, the table does not fit a
    // sheet, or progress said stop.
    static bool writeData(TFXlsxDocument &doc, TFTreeStruct *header, const QList<QList<QVariant>> &rows,
                          const Progress &progress = Progress());
    // One node at (row, col) and its subtree below it.
    static void writeCellItem(TFTreeStruct *node, TFXlsxDocument &doc, int row, int col,
                              const TFXlsxFormat &format);

    // "A" to "Z", then "AA" to "ZZ", then "AAA" on: column col counted from 1.
    static QString columnLetters(int col);
    // The letters of col and the number row: cellName(2, 28) is "AB2".
    static QString cellName(int row, int col);

    static const QString doubleFormat;
    static const QString integerFormat;
    static const QString dateFormat;
};
