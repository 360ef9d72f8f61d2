#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <string>

#include "session/watch/Notes.h"
#include "stacks/StackReport.h"
#include "system/processes/ThreadTracer.h"

namespace vexa::runner {

/// Reads the stacks of processes that crash or do not return.
///
/// Threads: one.
class WatchedStacks : NonCopyable {
public:
    /// For processes that this program has forked. They end with it.
    WatchedStacks();
    /// For other programs. They go on if this process ends.
    WatchedStacks(IsOfAddOn isOfAddOn, ThreadTracer::AtStop atStop);

    /// Traces \p process from now on, if that is possible.
    void watch(pid_t process);
    /// Call it when SIGCHLD has come.
    void attend() { m_tracer.attend(); }

    /// Call it after stop signals were sent. They stop a traced process only while its tracer attends.
    void attendStops();

    /// Returns the stacks of all threads of \p process, which is late.
    /// \param without a thread that is not of interest; 0 for none.
    StackReport ofHang(pid_t process, pid_t without);

    /// Returns the stack of the thread that ended \p process; nothing if no signal of its own ended it.
    /// \param waitStatus as from waitpid()
    StackReport ofEnd(pid_t process, int waitStatus) const;

    /// Returns the processes that a signal of their own was about to end, with the stacks.
    const std::map<pid_t, StackReport>& ends() const { return m_ends; }

    /// Call it when \p process has been waited for.
    void forget(pid_t process);

private:
    void keep(const ThreadTracer::Ending& ending);

    std::string whyNotTraced(pid_t process);

    const bool m_areForked;
    ThreadTracer m_tracer;
    std::map<pid_t, StackReport> m_ends;      // by process
    std::map<pid_t, std::string> m_problems;  // why a process is not traced
    std::optional<IsOfAddOn> m_isOfAddOn;     // read when it is needed
};

/// Asks the watching process for the stacks of this process, without that of the calling thread. Empty if nobody
/// watches this process.
StackReport askForStacks(NotesInterface& notes);

}  // namespace vexa::runner
