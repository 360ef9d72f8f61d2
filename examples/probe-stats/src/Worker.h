#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <utility>

namespace probestats {

/// A thread that runs one task, returns its result or exception, and is always joined. The class does not depend on
/// probes, so you can copy it unchanged to another add-on.
///
///     Worker<int> worker([](const std::atomic<bool>& stop) { return count(stop); });
///     while (!worker.endsWithin(std::chrono::milliseconds(20))) show();    // may throw: see the destructor
///     return worker.result();
///
/// Threads: call all functions on the thread that created the worker. Only the task runs on the new thread.
template <typename Result>
class Worker {
public:
    /// The work of the thread. It should return or throw soon after \p stop becomes true.
    using Task = std::function<Result(const std::atomic<bool>& stop)>;

    /// Starts the thread.
    /// \throws std::system_error if no thread can be created.
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

    /// Waits for the end of the task, but not longer than \p patience. Returns true if the task has ended.
    bool endsWithin(std::chrono::milliseconds patience) {
        return m_result.wait_for(patience) == std::future_status::ready;
    }

    /// Waits for the end of the task, and returns its result or throws its exception. Call it once.
    Result result() {
        m_thread.join();
        return m_result.get();
    }

private:
    std::atomic<bool> m_stop{false};  // not protected by a mutex of the host, because setting it must not fail
    std::packaged_task<Result()> m_task;
    std::future<Result> m_result;
    std::thread m_thread;
};

}  // namespace probestats
