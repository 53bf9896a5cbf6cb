#pragma once

#include <chrono>
#include <ctime>
#include <mutex>

class QJSEngine;

// Interrupts a script that runs too long. Formulas are small arithmetic, but
// the script engine gets whatever text the elements glue to, and a comment
// between a loop keyword and its parenthesis gets a loop past the reader.
//
// One thread looks after every engine that is watched. What counts is the
// processor time of the thread that runs the script, not the clock on the
// wall: a user-interface thread that is stopped or starved in the middle of
// an evaluation has not spent that time on the formula.
//
// The watching thread runs while anything holds it: every watchdog does, and
// the plug-in does from its initialisation to its destruction. When the last
// hold goes the thread is stopped and joined, so that it never outlives the
// library that holds its code.
class ScriptWatchdog
{
public:
    explicit ScriptWatchdog(QJSEngine *engine);
    ~ScriptWatchdog();

    ScriptWatchdog(const ScriptWatchdog &) = delete;
    ScriptWatchdog &operator=(const ScriptWatchdog &) = delete;

    // Brackets one run of the engine, on the thread that runs it.
    void begin();
    void end();

    // How much processor time one run may take before it is interrupted.
    static void setTimeLimit(std::chrono::milliseconds limit);
    static std::chrono::milliseconds timeLimit();

    // Keeps the watching thread running while it lives.
    class Hold
    {
    public:
        Hold();
        ~Hold();
        Hold(const Hold &) = delete;
        Hold &operator=(const Hold &) = delete;
    };

    // Whether the watching thread is running now.
    static bool isThreadRunning();

private:
    friend class ScriptWatchdogThread;
    void interruptIfOverdue(std::chrono::milliseconds limit);

    Hold m_hold;
    QJSEngine *m_engine;
    std::mutex m_mutex;
    bool m_running = false;
    clockid_t m_clock = 0;        // processor clock of the thread in begin()
    std::chrono::nanoseconds m_started{0};
};
