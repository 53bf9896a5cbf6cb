#pragma once

#include <QHash>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>

class CompiledFormula;
class ElementReadFactory;
class QJSEngine;
class QJSValue;
class ScriptWatchdog;
class TFCustomMath;

// Evaluates the small formulas of configuration: "[A]/[B]*100" over a row,
// "addyears(1)" and the like in place, and hands the arithmetic to the script
// engine. A parser is costly to make (it owns a script engine), so callers
// keep one for all rows of a table. Not to be shared between threads.
class ExpressionParse : public QObject
{
    Q_OBJECT
public:
    explicit ExpressionParse(QObject *parent = nullptr);
    ~ExpressionParse() override;

    // result becomes a valid number-like variant, or an invalid one when the
    // formula fails in any way: unknown function, bad syntax, a bare word, a
    // division by zero.
    void parse(const QString &expression, QVariant &result,
               const QMap<QString, QVariant> &arguments);

    // One call such as "$adddays(-1)" or "getlastedyearreport()". Dates come
    // back as "yyyy-MM-dd", numbers as their text, anything else empty.
    QString evalFunction(const QString &call);

    // Arithmetic on texts without the script engine, for callers that want
    // it: "+", "-", "*", "/", "%". A zero divisor gives "-99999999".
    using StringOperation = QString (*)(const QString &left, const QString &right);
    static const QHash<QString, StringOperation> &stringOperations();

private:
    CompiledFormula *compiledFormula(const QString &expression);
    CompiledFormula *scan(const QString &expression);
    bool evaluateArithmetic(CompiledFormula &formula, const QMap<QString, QVariant> &arguments,
                            QJSValue &value);
    QJSValue evaluateGlued(const CompiledFormula &formula, const QMap<QString, QVariant> &arguments);
    QString callAndFormat(const QString &name, const QString &argumentText) const;
    QJSValue runScript(const QString &program);

    QString m_expression;
    TFCustomMath *m_math;
    QJSEngine *m_engine;
    ElementReadFactory *m_factory;
    ScriptWatchdog *m_watchdog;
    QHash<QString, CompiledFormula *> m_formulas;
};
