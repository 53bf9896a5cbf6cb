#pragma once

#include <chrono>
#include <mutex>

class QJSEngine;

// Interrupts a script that runs too long. Formulas are small arithmetic, but
// the script engine gets whatever text the elements glue to, and a comment
// between a loop keyword and its parenthesis gets a loop past the reader.
// One thread of the process looks after every engine that is watched.
class ScriptWatchdog
{
public:
    explicit ScriptWatchdog(QJSEngine *engine);
    ~ScriptWatchdog();

    ScriptWatchdog(const ScriptWatchdog &) = delete;
    ScriptWatchdog &operator=(const ScriptWatchdog &) = delete;

    // Brackets one run of the engine.
    void begin();
    void end();

    // How long one run may take before it is interrupted.
    static void setTimeLimit(std::chrono::milliseconds limit);
    static std::chrono::milliseconds timeLimit();

private:
    friend class ScriptWatchdogThread;
    void interruptIfOverdue(std::chrono::steady_clock::time_point now,
                            std::chrono::milliseconds limit);

    QJSEngine *m_engine;
    std::mutex m_mutex;
    bool m_running = false;
    std::chrono::steady_clock::time_point m_started;
};
