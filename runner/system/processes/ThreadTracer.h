#pragma once

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// Traces processes with ptrace(2): children, and processes that children started. It sees a signal before the signal
/// ends a process, and can stop all threads of a process. It does not trace processes that a traced process forks.
/// It no longer traces a thread that gets hundreds of signals within a second.
///
/// Threads: one. The system accepts requests only from the thread that started to trace.
class ThreadTracer : NonCopyable {
public:
    /// A signal that is about to end a process.
    struct Ending {
        pid_t process;
        pid_t thread;  ///< the thread that got the signal; it is stopped
        siginfo_t signal;
    };
    /// Called when a signal is about to end a traced process.
    using AtEnding = std::function<void(const Ending&)>;
    /// Called when a stop signal has stopped a traced process. If one is traced, also called for other child processes,
    /// because the tracer may take the report of their stop.
    using AtStop = std::function<void(pid_t process)>;

    explicit ThreadTracer(AtEnding atEnding, AtStop atStop = {})
        : m_atEnding(std::move(atEnding)), m_atStop(std::move(atStop)) {}

    /// Starts to trace all threads of \p process, unless it is traced. From now on attend() must be called when SIGCHLD
    /// comes.
    /// \param endsWithTracer whether the process is killed if this process ends before it
    /// \return 0, or the error of the system.
    int trace(pid_t process, bool endsWithTracer);

    /// Handles what the traced threads did since the last call.
    void attend();

    /// Stops all threads of \p process, calls \p use, and lets the threads go on. Traces those that were not traced.
    /// \param use gets the threads that stopped. A thread may wait in the system and not stop.
    void withAllStopped(pid_t process, const std::function<void(const std::vector<pid_t>&)>& use);

    /// Call it when \p process has been waited for.
    void forget(pid_t process);

private:
    /// What a thread reports when it stops: a signal, and the number of an event in the second byte.
    using Report = int;

    bool attendStop();
    void attendEnds();
    bool mayCollect(pid_t thread);
    bool collect(pid_t thread);
    void goOn(pid_t thread, Report report);
    void deliver(pid_t thread, int signal);
    bool isFlooded(pid_t thread);
    pid_t processOf(pid_t thread);
    bool interrupt(pid_t process, pid_t thread);

    AtEnding m_atEnding;
    AtStop m_atStop;
    std::map<pid_t, pid_t> m_processes;  // by traced thread
    /// The start of a second, and how many signals came since then, by thread.
    std::map<pid_t, std::pair<std::chrono::steady_clock::time_point, int>> m_signals;
};

/// Returns the process of \p thread; 0 if the thread has ended.
pid_t processOfThread(pid_t thread);

/// Returns true if \p signal reports a fault of the program, and not the wish of somebody to end it.
bool isFault(int signal);

/// Returns true if waitid() reports an end. It reports the stops of traced processes, too, whatever it is asked for.
bool isEnd(const siginfo_t& info);

/// Waits for the traced threads of \p process, which was killed, except the first. Until then nobody can wait for the
/// process itself.
void collectThreadsOf(pid_t process);

}  // namespace vexa::runner
