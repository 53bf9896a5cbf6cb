#pragma once

#include <QChar>
#include <QJSValue>
#include <QString>
#include <QVector>

class QJSEngine;

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
// A formula that is nothing but numbers, fields, operators and parentheses
// is also compiled once into a script function whose parameters are its
// fields. Calling that function with the field values gives exactly what the
// engine gives for the glued text, as long as every value is a plain decimal
// that does not fuse with its neighbours; the parser checks that per row and
// falls back to the glued text otherwise.
class CompiledFormula
{
public:
    QVector<FormulaElement> elements;
    // The reader's last character after the scan.
    QChar lastCharAfter;
    // The scan met a character that no element can start with and stopped.
    bool stalled = false;

    // Elements (indices) that are fields, in parameter order, and whether
    // a "-" stands right before each.
    struct Field
    {
        int element = -1;
        bool afterMinus = false;
    };

    bool isArithmetic() const { return m_arithmetic; }
    const QVector<Field> &fields() const { return m_fields; }
    QJSValue &function() { return m_function; }

    // Decides whether the formula is plain arithmetic and, if so, the text of
    // the script function that computes it. Empty when it is not.
    QString functionSource();
    void setFunction(const QJSValue &function) { m_function = function; }
    bool compileTried() const { return m_compileTried; }

private:
    bool checkArithmetic();

    bool m_compileTried = false;
    bool m_arithmetic = false;
    QVector<Field> m_fields;
    QJSValue m_function;
};
