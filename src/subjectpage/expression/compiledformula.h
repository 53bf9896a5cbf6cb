#pragma once

#include <QChar>
#include <QJSValue>
#include <QString>
#include <QVector>

// One element as the scan left it.
struct FormulaElement
{
    QString text;
    int type = 0;
    int endPosition = -1;
};

// What the reader makes of one formula, kept so that the rows of a table do
// not scan it again. The scan depends only on the text and on whether the
// reader started fresh (nothing read yet, or a splitter last), so the parser
// keeps one of these per text and start.
//
// A formula that is nothing but numbers, fields, calls, operators and
// parentheses is also compiled once into a script function whose parameters
// are its fields and the results of its calls. Calling that function gives
// exactly what the engine gives for the glued text as long as every value
// spliced in is a plain decimal that cannot fuse with its neighbours; the
// parser checks that per row and glues the text otherwise.
class CompiledFormula
{
public:
    QVector<FormulaElement> elements;
    // The reader's last character after the scan.
    QChar lastCharAfter;
    // The scan met a character that no element can start with and stopped.
    bool stalled = false;

    // A value spliced into the glued text: a field of the row, or the result
    // of a call.
    struct Splice
    {
        enum Kind { Field, Call };
        Kind kind = Field;
        QString text;          // the field's name, or the call as written
        bool afterMinus = false;
    };

    const QVector<Splice> &splices() const { return m_splices; }
    QJSValue &function() { return m_function; }

    // The text of the script function that computes the formula, or an
    // empty text when the formula is not plain arithmetic.
    QString functionSource();
    void setFunction(const QJSValue &function) { m_function = function; }
    bool compileTried() const { return m_compileTried; }

private:
    // An element of the glued text once every field is in the row: fixed
    // text, or a splice.
    struct Piece
    {
        QString text;
        int type = 0;
        int splice = -1;
    };

    bool buildPieces(QVector<Piece> &pieces);

    bool m_compileTried = false;
    QVector<Splice> m_splices;
    QJSValue m_function;
};
