#include "formulaplugin.h"

#include "expression/expressionparse.h"
#include "expression/scriptwatchdog.h"

#include <QPluginLoader>
#include <QQmlEngine>
#include <QtTest>

namespace {

// Lets a script stop its thread without using the processor, as a user
// interface thread does that the system stops or starves.
class Sleeper : public QObject
{
    Q_OBJECT
public:
    Q_INVOKABLE void sleep(int milliseconds) { QThread::msleep(static_cast<unsigned long>(milliseconds)); }
};

bool isMapped(const QString &library)
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    if (!maps.open(QIODevice::ReadOnly))
        return true;
    return maps.readAll().contains(QFileInfo(library).canonicalFilePath().toLocal8Bit());
}

} // namespace

class tst_ScriptWatchdog : public QObject
{
    Q_OBJECT
private slots:
    void cleanup();
    void timeCharged_data();
    void timeCharged();
    void threadRunsWhileHeld();
    void pluginUnloadsBetweenEvaluations();

private:
    const std::chrono::milliseconds m_limit = ScriptWatchdog::timeLimit();
};

void tst_ScriptWatchdog::cleanup()
{
    ScriptWatchdog::setTimeLimit(m_limit);
}

void tst_ScriptWatchdog::timeCharged_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<bool>("interrupted");
    // Three times the limit asleep, then a loop that looks at the interrupt.
    QTest::newRow("a stopped thread is not charged")
            << "host.sleep(600); var s = 0; for (var i = 0; i < 10; ++i) s += i; s" << false;
    QTest::newRow("a busy thread is") << "var s = 0; for (;;) s += 1; s" << true;
}

// The limit counts the processor time of the evaluating thread, not the
// clock on the wall.
void tst_ScriptWatchdog::timeCharged()
{
    QFETCH(QString, script);
    QFETCH(bool, interrupted);
    ScriptWatchdog::setTimeLimit(std::chrono::milliseconds(200));
    QJSEngine engine;
    Sleeper sleeper;
    engine.globalObject().setProperty(QStringLiteral("host"), engine.newQObject(&sleeper));
    QQmlEngine::setObjectOwnership(&sleeper, QQmlEngine::CppOwnership);
    ScriptWatchdog watchdog(&engine);

    watchdog.begin();
    const QJSValue value = engine.evaluate(script);
    watchdog.end();
    if (interrupted)
        QVERIFY2(!value.isNumber(), qPrintable(value.toString()));
    else
        QCOMPARE(value.toInt(), 45);
    QVERIFY(!engine.isInterrupted());
}

// The thread starts with the first hold and is joined when the last goes.
void tst_ScriptWatchdog::threadRunsWhileHeld()
{
    QVERIFY(!ScriptWatchdog::isThreadRunning());
    {
        auto parser = std::make_unique<ExpressionParse>();
        QVERIFY(ScriptWatchdog::isThreadRunning());
        {
            ScriptWatchdog::Hold plugin;
            parser.reset();
            QVERIFY(ScriptWatchdog::isThreadRunning());
        }
        QVERIFY(!ScriptWatchdog::isThreadRunning());
    }
    ExpressionParse again;
    QVERIFY(ScriptWatchdog::isThreadRunning());
}

// A plug-in with the expression module in it evaluates formulas, its
// watchdog interrupts a runaway one, and it is unloaded and loaded again.
// A watchdog thread left behind would run code that is no longer mapped.
void tst_ScriptWatchdog::pluginUnloadsBetweenEvaluations()
{
    const QString library = QStringLiteral(FORMULA_PLUGIN);
    for (int round = 0; round < 4; ++round) {
        QPluginLoader loader(library);
        loader.setLoadHints(QLibrary::LoadHints());   // Qt keeps plug-ins mapped unless told otherwise
        QVERIFY2(loader.load(), qPrintable(loader.errorString()));
        auto *evaluator = qobject_cast<FormulaEvaluator *>(loader.instance());
        QVERIFY(evaluator);
        evaluator->setTimeLimitMs(100);
        for (int i = 0; i < 40; ++i) {
            const QVariantMap row{{QStringLiteral("A"), i}, {QStringLiteral("B"), QStringLiteral("1")}};
            QCOMPARE(evaluator->evaluate(QStringLiteral("[A]*2+[B]"), row).toInt(), i * 2 + 1);
        }
        QCOMPARE(evaluator->evaluate(QStringLiteral("1;while/**/(1)1"), {}), QVariant());
        QVERIFY(evaluator->isWatchdogRunning());

        QVERIFY2(loader.unload(), qPrintable(loader.errorString()));
        QVERIFY2(!isMapped(library), "the library stayed mapped: nothing was unloaded");
        QTest::qWait(200);   // several wake-ups of a thread left behind
    }
}

QTEST_GUILESS_MAIN(tst_ScriptWatchdog)
#include "tst_scriptwatchdog.moc"
