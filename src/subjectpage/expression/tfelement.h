#pragma once

#include <QObject>
#include <QString>

// One token of a formula. The reader classes below only fix the type; the
// numbers are part of the format and callers compare against them.
class TFElement : public QObject
{
    Q_OBJECT
public:
    enum Type {
        String = 1,
        Number = 6,
        Variable = 8,
        Operator = 9,
        Function = 10,
        Splitor = 11
    };

    explicit TFElement(int type = 0, QObject *parent = nullptr);
    TFElement(int type, const QString &text, int endPosition, QObject *parent = nullptr);

    QString text() const { return m_text; }
    void setText(const QString &text) { m_text = text; }
    int endPosition() const { return m_endPosition; }
    void setEndPosition(int position) { m_endPosition = position; }
    int type() const { return m_type; }
    void setType(int type) { m_type = type; }

private:
    QString m_text;
    int m_endPosition = -1;
    int m_type = 0;
};

// `[name]`: a field of the row; the text is held without brackets.
class StringTypeReader : public TFElement
{
    Q_OBJECT
public:
    StringTypeReader(const QString &text, int endPosition, QObject *parent = nullptr)
        : TFElement(String, text, endPosition, parent) {}
};

class NumberTypeReader : public TFElement
{
    Q_OBJECT
public:
    NumberTypeReader(const QString &text, int endPosition, QObject *parent = nullptr)
        : TFElement(Number, text, endPosition, parent) {}
};

class VariableTypeReader : public TFElement
{
    Q_OBJECT
public:
    VariableTypeReader(const QString &text, int endPosition, QObject *parent = nullptr)
        : TFElement(Variable, text, endPosition, parent) {}
};

// Knows where its character stands in the operator list; precedence is left
// to the script engine, so nothing reads this but the curious.
class OperatorTypeReader : public TFElement
{
    Q_OBJECT
public:
    OperatorTypeReader(const QString &text, int endPosition, QObject *parent = nullptr);

    int operatorIndex() const { return m_operatorIndex; }

    static const QStringList &operatorList();

private:
    int m_operatorIndex = -1;
};

class FunctionTypeReader : public TFElement
{
    Q_OBJECT
public:
    FunctionTypeReader(const QString &text, int endPosition, QObject *parent = nullptr)
        : TFElement(Function, text, endPosition, parent) {}
};

class SplitorTypeReader : public TFElement
{
    Q_OBJECT
public:
    SplitorTypeReader(const QString &text, int endPosition, QObject *parent = nullptr)
        : TFElement(Splitor, text, endPosition, parent) {}
};
