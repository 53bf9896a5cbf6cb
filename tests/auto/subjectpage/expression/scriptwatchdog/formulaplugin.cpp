#include "formulaplugin.h"

#include "expression/expressionparse.h"
#include "expression/scriptwatchdog.h"

class FormulaPlugin : public QObject, public FormulaEvaluator
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID FormulaEvaluator_iid FILE "formulaplugin.json")
    Q_INTERFACES(FormulaEvaluator)
public:
    QVariant evaluate(const QString &formula, const QVariantMap &arguments) override
    {
        if (!m_parser)
            m_parser = new ExpressionParse(this);
        QVariant result;
        m_parser->parse(formula, result, arguments);
        return result;
    }

    void setTimeLimitMs(int milliseconds) override
    {
        ScriptWatchdog::setTimeLimit(std::chrono::milliseconds(milliseconds));
    }

    bool isWatchdogRunning() const override { return ScriptWatchdog::isThreadRunning(); }

private:
    ExpressionParse *m_parser = nullptr;   // a child, made on first use
};

#include "formulaplugin.moc"
