#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>

#define FormulaEvaluator_iid "subject.test.FormulaEvaluator"

// What the suite asks of the plug-in that carries a copy of the expression
// module: evaluate formulas, and tell whether its watchdog thread runs.
class FormulaEvaluator
{
public:
    virtual ~FormulaEvaluator() = default;
    virtual QVariant evaluate(const QString &formula, const QVariantMap &arguments) = 0;
    virtual void setTimeLimitMs(int milliseconds) = 0;
    virtual bool isWatchdogRunning() const = 0;
};

Q_DECLARE_INTERFACE(FormulaEvaluator, FormulaEvaluator_iid)
