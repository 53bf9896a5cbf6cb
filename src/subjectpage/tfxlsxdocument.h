#pragma once

#include <QHash>
#include <QString>
#include <QVariant>
#include <QVector>

struct lxw_format;
struct lxw_workbook;
struct lxw_worksheet;

// How a cell looks: alignments as the sheet numbers them (horizontal 2 is
// centre, vertical 1 is centre, 0 is the default), bold, and a number format
// code.
struct TFXlsxFormat
{
    int horizontalAlignment = 0;
    int verticalAlignment = 0;
    bool bold = false;
    QString numberFormat;

    bool operator==(const TFXlsxFormat &other) const
    {
        return horizontalAlignment == other.horizontalAlignment
            && verticalAlignment == other.verticalAlignment && bold == other.bold
            && numberFormat == other.numberFormat;
    }
};

// A workbook of one sheet written through libxlsxwriter, rows and columns
// counted from 1.
//
// The sheet is written in constant-memory mode: each row goes to disk once a
// later row is started, so rows must come in ascending order. Cells written
// between holdRows() and releaseRows() may come in any order (a band header
// is written band by band, not row by row); they are kept and handed on
// sorted by row when released.
//
// Nothing appears under the file name until save(): the workbook is written
// to a temporary file in the same folder and renamed over the name at the
// end, so a failed or abandoned workbook leaves no half-written file.
class TFXlsxDocument
{
public:
    explicit TFXlsxDocument(const QString &fileName);
    ~TFXlsxDocument();

    TFXlsxDocument(const TFXlsxDocument &) = delete;
    TFXlsxDocument &operator=(const TFXlsxDocument &) = delete;

    // False when no temporary file could be made beside the name.
    bool isOpen() const { return m_workbook != nullptr; }
    QString fileName() const { return m_fileName; }
    // The first thing that went wrong, empty while all is well.
    QString errorString() const { return m_error; }

    // The libxlsxwriter format for f, made once per distinct format.
    lxw_format *format(const TFXlsxFormat &f);

    // Numbers, booleans and dates as such, texts as texts (never formulas),
    // anything else as its text; an invalid or null value as a blank cell.
    bool write(int row, int col, const QVariant &value, lxw_format *format);
    bool write(int row, int col, const QVariant &value, const TFXlsxFormat &f) { return write(row, col, value, format(f)); }
    // Merges the cells of one row from firstCol to lastCol; text stands in
    // the first of them.
    bool mergeCells(int row, int firstCol, int lastCol, const QString &text, lxw_format *format);
    bool setColumnWidth(int firstCol, int lastCol, double width);

    void holdRows();
    void releaseRows();

    // Writes the workbook and moves it to its name; false with errorString.
    bool save() { return finish() && commit(); }
    // The two halves of save: the workbook is written to its temporary
    // file, and that file is moved to the name. finish() may run on another
    // thread, as long as nothing else touches the document meanwhile.
    bool finish();
    bool commit();
    // Drops the workbook without writing it.
    void discard();

    // A text as a sheet can hold it: control characters other than tab,
    // line feed and carriage return removed, cut to the 32767 characters a
    // cell holds.
    static QString sheetText(const QString &text);
    // The sheet's limits.
    static constexpr int maxRows = 1048576;
    static constexpr int maxColumns = 16384;

private:
    struct HeldCell
    {
        int row;
        int col;
        int lastCol;        // > col for a merge
        QVariant value;     // the text of a merge
        lxw_format *format;
    };

    bool writeNow(int row, int col, const QVariant &value, lxw_format *format);
    bool check(int error, int row, int col);
    void fail(const QString &message);

    QString m_fileName;
    QString m_tempName;
    QString m_error;
    lxw_workbook *m_workbook = nullptr;
    lxw_worksheet *m_sheet = nullptr;
    QHash<QString, lxw_format *> m_formats;
    bool m_holding = false;
    QVector<HeldCell> m_held;
};
