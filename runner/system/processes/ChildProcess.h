#pragma once

#include <sys/types.h>

#include <csignal>
#include <functional>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// A child process in a new process group. The destructor kills the child and its group. The child also dies with its
/// parent. It cannot read from the terminal, which belongs to the parent.
///
/// Create it while the process has one thread.
class ChildProcess : NonCopyable {
public:
    /// Its standard streams.
    struct Streams {
        int out = -1;              ///< a descriptor for its standard output; -1 for that of this process
        int err = -1;              ///< a descriptor for its standard error output; -1 for that of this process
        bool readsNothing = true;  ///< true if its standard input is empty
    };

    /// \param mask the signals that it blocks.
    /// \param work runs in the child, and must not return.
    /// \throws std::system_error if no process can be created.
    ChildProcess(const Streams& streams, const sigset_t& mask, const std::function<void()>& work);
    ~ChildProcess();

    pid_t id() const { return m_id; }
    /// Returns true if it has ended. Other processes of its group may still run.
    bool hasEnded() const;
    /// Sends \p signal to its group.
    void signalGroup(int signal) const;
    /// Kills it and its group.
    void kill() const;
    /// Kills its group, and the child itself unless it has ended. Call nothing after this.
    /// \return its status, as from waitpid(). Until this call the system does not reuse its id.
    int reap();

private:
    pid_t m_id;
    bool m_isReaped = false;
};

}  // namespace vexa::runner
