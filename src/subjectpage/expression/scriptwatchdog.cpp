#include "scriptwatchdog.h"

#include <QJSEngine>

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <thread>
#include <vector>

namespace {

std::atomic<long long> g_limitMs{2000};

// The processor time a thread has used so far; false when its clock cannot
// be read (a thread that has ended).
bool cpuTime(clockid_t clock, std::chrono::nanoseconds *time)
{
    timespec clockTime{};
    if (clock_gettime(clock, &clockTime) != 0)
        return false;
    *time = std::chrono::seconds(clockTime.tv_sec) + std::chrono::nanoseconds(clockTime.tv_nsec);
    return true;
}

} // namespace

// Wakes a few times a second while anything is watched, and sleeps on a
// condition while nothing is. Started by the first hold, stopped and joined
// by the last.
class ScriptWatchdogThread
{
public:
    static ScriptWatchdogThread &instance();

    void acquire()
    {
        std::lock_guard<std::mutex> lifecycle(m_lifecycle);
        if (m_holds++ > 0)
            return;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_stopping = false;
            m_running = true;
        }
        m_thread = std::thread([this] { run(); });
    }

    void release()
    {
        std::lock_guard<std::mutex> lifecycle(m_lifecycle);
        if (--m_holds > 0)
            return;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            m_stopping = true;
        }
        m_wake.notify_one();
        m_thread.join();
        std::lock_guard<std::mutex> lock(m_mutex);
        m_running = false;
    }

    bool isRunning()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_running;
    }

    void add(ScriptWatchdog *watchdog)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_watched.push_back(watchdog);
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
        while (!m_stopping) {
            if (m_watched.empty()) {
                m_wake.wait(lock, [this] { return m_stopping || !m_watched.empty(); });
                continue;
            }
            if (m_wake.wait_for(lock, std::chrono::milliseconds(50), [this] { return m_stopping; }))
                break;
            const std::chrono::milliseconds limit(g_limitMs.load());
            for (ScriptWatchdog *watchdog : m_watched)
                watchdog->interruptIfOverdue(limit);
        }
    }

    std::mutex m_lifecycle;     // start and stop, join included
    int m_holds = 0;
    std::thread m_thread;

    std::mutex m_mutex;         // what the thread reads
    std::condition_variable m_wake;
    std::vector<ScriptWatchdog *> m_watched;
    bool m_stopping = false;
    bool m_running = false;
};

// Outlives every static of the library: a hold that goes in a static
// destructor still finds it. It owns no running thread once the last hold has
// gone. Defined out of line, so that the library keeps no unique symbol for
// it, which would stop the loader from unloading the library.
ScriptWatchdogThread &ScriptWatchdogThread::instance()
{
    static ScriptWatchdogThread *thread = new ScriptWatchdogThread;
    return *thread;
}

ScriptWatchdog::Hold::Hold()
{
    ScriptWatchdogThread::instance().acquire();
}

ScriptWatchdog::Hold::~Hold()
{
    ScriptWatchdogThread::instance().release();
}

bool ScriptWatchdog::isThreadRunning()
{
    return ScriptWatchdogThread::instance().isRunning();
}

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
    clockid_t clock = 0;
    std::chrono::nanoseconds started{0};
    const bool readable = pthread_getcpuclockid(pthread_self(), &clock) == 0 && cpuTime(clock, &started);
    std::lock_guard<std::mutex> lock(m_mutex);
    m_running = readable;
    m_clock = clock;
    m_started = started;
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

void ScriptWatchdog::interruptIfOverdue(std::chrono::milliseconds limit)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_running)
        return;
    std::chrono::nanoseconds now{0};
    if (cpuTime(m_clock, &now) && now - m_started >= limit)
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
