#pragma once

#include <QObject>
#include <QSet>
#include <QString>

class TFElement;

// Cuts a formula into elements one at a time. The character read last is
// kept across sources on purpose: a parser object is reused for many
// formulas, and a word at the start of the next one is judged by it.
class ElementReadFactory : public QObject
{
    Q_OBJECT
public:
    explicit ElementReadFactory(QObject *parent = nullptr);

    void setSource(const QString &source);
    QString source() const { return m_source; }

    // The element that starts at position, or null outside the source. The
    // caller owns the element.
    TFElement *readElement(int position);

    QChar lastChar() const { return m_lastChar; }
    // Lets a parser that replays an earlier scan leave the reader as that
    // scan would have.
    void setLastChar(QChar c) { m_lastChar = c; }

    bool isSplitter(QChar c) const { return m_splitters.contains(c); }
    bool isOperator(QChar c) const { return m_operators.contains(c); }
    bool isVariableStop(QChar c) const { return m_variableStops.contains(c); }

private:
    TFElement *readFunction(int position) const;
    TFElement *readString(int position) const;
    TFElement *readVariable(int position) const;

    QSet<QChar> m_splitters;
    QSet<QChar> m_operators;
    QSet<QChar> m_variableStops;
    QString m_source;
    QChar m_lastChar;
};
