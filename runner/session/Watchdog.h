#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "session/watch/TimeSteps.h"
#include "system/processes/OtherThreads.h"
#include "system/processes/Signals.h"

namespace vexa::runner {

/// Ends the program if work takes too long. Time in which the system does not run the program does not count. While the
/// watching process is stopped, a stop signal stops only the first thread, because that process traces this one.
///
///     Watchdog watchdog([&] { tell(...); _exit(4); });
///     watchdog.start(2s);
///     host.run("STATS", "MEAN");
///     watchdog.stop();
///
/// Threads: start() and stop() are called from one thread.
class Watchdog {
public:
    using Seconds = std::chrono::duration<double>;

    /// \param endProgram is called when the time is over, on a thread that gets no signals. It must not return.
    ///        Meanwhile calls of stop() wait forever.
    explicit Watchdog(std::function<void()> endProgram) : m_endProgram(std::move(endProgram)) {
        const SignalMask blocked(allSignals());
        m_thread = std::thread([this] { watch(); });
    }
    ~Watchdog() {
        change([this] { m_isEnding = true; });
        m_thread.join();
    }

    void start(Seconds limit) {
        change([&] {
            m_left = std::chrono::duration_cast<Clock::duration>(limit);
            m_stepBegin = Clock::now();
        });
    }
    void stop() {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_left.reset();
    }

private:
    using Clock = std::chrono::steady_clock;

    template <class Action>
    void change(const Action& action) {
        {
            const std::lock_guard<std::mutex> lock(m_guard);
            action();
        }
        m_news.notify_one();
    }

    void watch() {
        std::unique_lock<std::mutex> lock(m_guard);
        while (!m_isEnding) {
            if (!m_left) {
                m_news.wait(lock);
            } else if (m_left->count() > 0) {
                m_news.wait_for(lock, std::min<Clock::duration>(*m_left, kTimeStep));
                countStep();
            } else {
                m_endProgram();
            }
        }
    }

    void countStep() {
        if (!m_left) return;
        const Clock::time_point now = Clock::now();
        if (!isFirstThreadStopped()) *m_left -= std::min<Clock::duration>(now - m_stepBegin, kLongestTimeStep);
        m_stepBegin = now;
    }

    std::function<void()> m_endProgram;
    std::mutex m_guard;
    std::condition_variable m_news;
    std::optional<Clock::duration> m_left;  // none while nothing is watched
    Clock::time_point m_stepBegin;
    bool m_isEnding = false;
    std::thread m_thread;
};

}  // namespace vexa::runner
