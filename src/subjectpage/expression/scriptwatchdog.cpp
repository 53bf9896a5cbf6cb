#include "scriptwatchdog.h"

#include <QJSEngine>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <thread>
#include <vector>

namespace {
std::atomic<long long> g_limitMs{2000};
}

// Wakes a few times a second while anything is watched, and sleeps on a
// condition while nothing is.
class ScriptWatchdogThread
{
public:
    static ScriptWatchdogThread &instance()
    {
        // Never destroyed: the thread outlives every static of the process.
        static ScriptWatchdogThread *thread = new ScriptWatchdogThread;
        return *thread;
    }

    void add(ScriptWatchdog *watchdog)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_watched.push_back(watchdog);
        if (!m_started) {
            m_started = true;
            std::thread([this] { run(); }).detach();
        }
        m_wake.notify_one();
    }

    void remove(ScriptWatchdog *watchdog)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_watched.erase(std::remove(m_watched.begin(), m_watched.end(), watchdog), m_watched.end());
    }

private:
    void run()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        for (;;) {
            m_wake.wait(lock, [this] { return !m_watched.empty(); });
            m_wake.wait_for(lock, std::chrono::milliseconds(50));
            const auto now = std::chrono::steady_clock::now();
            const std::chrono::milliseconds limit(g_limitMs.load());
            for (ScriptWatchdog *watchdog : m_watched)
                watchdog->interruptIfOverdue(now, limit);
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_wake;
    std::vector<ScriptWatchdog *> m_watched;
    bool m_started = false;
};

ScriptWatchdog::ScriptWatchdog(QJSEngine *engine)
    : m_engine(engine)
{
    ScriptWatchdogThread::instance().add(this);
}

ScriptWatchdog::~ScriptWatchdog()
{
    ScriptWatchdogThread::instance().remove(this);
}

void ScriptWatchdog::begin()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_running = true;
    m_started = std::chrono::steady_clock::now();
}

// The interrupt flag is cleared under the same lock that sets it, so an
// interrupt meant for one run never reaches the next.
void ScriptWatchdog::end()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_running = false;
    if (m_engine->isInterrupted())
        m_engine->setInterrupted(false);
}

void ScriptWatchdog::interruptIfOverdue(std::chrono::steady_clock::time_point now,
                                        std::chrono::milliseconds limit)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_running && now - m_started >= limit)
        m_engine->setInterrupted(true);
}

void ScriptWatchdog::setTimeLimit(std::chrono::milliseconds limit)
{
    g_limitMs.store(limit.count());
}

std::chrono::milliseconds ScriptWatchdog::timeLimit()
{
    return std::chrono::milliseconds(g_limitMs.load());
}
