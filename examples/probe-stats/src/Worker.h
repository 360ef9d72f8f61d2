#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <utility>

namespace probestats {

/// One thread with one task, whose result or exception is handed over, and which is always joined. Nothing in it is
/// about probes: take it to another add-on as it is.
///
///     Worker<int> worker([](const std::atomic<bool>& stop) { return count(stop); });
///     while (!worker.endsWithin(std::chrono::milliseconds(20))) show();    // may throw: see the destructor
///     return worker.result();
///
/// Threads: all but the task belongs to the thread that made the worker.
template <typename Result>
class Worker {
public:
    /// What the thread does. It should end soon, in whatever way, once \p stop is true.
    using Task = std::function<Result(const std::atomic<bool>& stop)>;

    /// Starts the thread.
    /// \throws std::system_error when there is no thread to be had.
    explicit Worker(Task task)
        : m_task([this, work = std::move(task)] { return work(m_stop); }),
          m_result(m_task.get_future()),
          m_thread(std::ref(m_task)) {}
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    /// Tells the task to stop, and waits for its end.
    ~Worker() {
        m_stop = true;
        if (m_thread.joinable()) m_thread.join();
    }

    /// Waits for the end of the task, but no longer than \p patience. Returns whether it has ended.
    bool endsWithin(std::chrono::milliseconds patience) {
        return m_result.wait_for(patience) == std::future_status::ready;
    }

    /// Waits for the end of the task, and returns its result or throws its exception. Call it once.
    Result result() {
        m_thread.join();
        return m_result.get();
    }

private:
    std::atomic<bool> m_stop{false};  // under no mutex of the host: to set it must not fail
    std::packaged_task<Result()> m_task;
    std::future<Result> m_result;
    std::thread m_thread;
};

}  // namespace probestats
