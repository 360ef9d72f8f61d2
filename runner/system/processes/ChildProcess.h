#pragma once

#include <sys/types.h>

#include <csignal>
#include <functional>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// A child process in a process group of its own. The destructor kills it and its group, and it dies with its parent.
/// It cannot read from the terminal, which belongs to the parent.
///
/// Create it while the process has one thread.
class ChildProcess : NonCopyable {
public:
    /// Its standard streams.
    struct Streams {
        int out = -1;              ///< a descriptor for its standard output; -1 for the one of this process
        int err = -1;              ///< the same for its standard error output
        bool readsNothing = true;  ///< whether its standard input is empty
    };

    /// \param mask the signals that it blocks.
    /// \param work runs in the child, and must not return.
    /// \throws std::system_error if no process can be created.
    ChildProcess(const Streams& streams, const sigset_t& mask, const std::function<void()>& work);
    ~ChildProcess();

    pid_t id() const { return m_id; }
    /// Whether it has ended. Other processes of its group may still run.
    bool hasEnded() const;
    /// Sends \p signal to its group.
    void signalGroup(int signal) const;
    /// Kills it and its group.
    void kill() const;
    /// Kills it, unless it has ended, and its group. Call nothing after this.
    /// \return its status, as from waitpid(). Until this call the system does not reuse its id.
    int reap();

private:
    pid_t m_id;
    bool m_isReaped = false;
};

}  // namespace vexa::runner
