#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include "system/processes/Signals.h"

namespace vexa::runner {

/// Ends the program if work takes too long.
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

    /// \param endProgram called when the time is over, on a thread that gets no signals. It must not return. From then
    /// on,
    ///                   calls of stop() wait forever.
    explicit Watchdog(std::function<void()> endProgram) : m_endProgram(std::move(endProgram)) {
        const SignalMask blocked(allSignals());
        m_thread = std::thread([this] { watch(); });
    }
    ~Watchdog() {
        change([this] { m_isEnding = true; });
        m_thread.join();
    }

    void start(Seconds limit) {
        change([&] { m_deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(limit); });
    }
    void stop() {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_deadline.reset();
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
            if (!m_deadline) {
                m_news.wait(lock);
            } else if (const Clock::time_point deadline = *m_deadline; Clock::now() < deadline) {
                m_news.wait_until(lock, deadline);
            } else {
                m_endProgram();
            }
        }
    }

    std::function<void()> m_endProgram;
    std::mutex m_guard;
    std::condition_variable m_news;
    std::optional<Clock::time_point> m_deadline;  // none while nothing is watched
    bool m_isEnding = false;
    std::thread m_thread;
};

}  // namespace vexa::runner
