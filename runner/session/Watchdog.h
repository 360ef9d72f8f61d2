#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace vexa::runner {

/// Ends the program if something takes too long.
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

    /// \param endProgram is called when the time is over, on a thread that gets no signals. It must not return. Calls
    ///        of stop() wait for ever meanwhile.
    explicit Watchdog(std::function<void()> endProgram);
    ~Watchdog();

    void start(Seconds limit);
    void stop();

private:
    using Clock = std::chrono::steady_clock;

    void watch();

    std::function<void()> m_endProgram;
    std::mutex m_guard;
    std::condition_variable m_news;
    std::optional<Clock::time_point> m_deadline;  // none while nothing is watched
    bool m_isEnding = false;
    std::thread m_thread;
};

}  // namespace vexa::runner
