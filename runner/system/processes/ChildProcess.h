#pragma once

#include <sys/types.h>

#include <csignal>
#include <functional>

namespace vexa::runner {

/// A process that is forked off for some work, in a group of its own. Neither it nor its group outlives this object,
/// and it does not outlive the process that made it. It reads nothing from a terminal, which is its parent's.
///
/// To be made while there is one thread.
class ChildProcess {
public:
    /// Where its standard streams go.
    struct Streams {
        int out = -1;              ///< a descriptor for its standard output; -1 for the one of this process
        int err = -1;              ///< and for its standard error output
        bool readsNothing = true;  ///< whether there is nothing to read on its standard input
    };

    /// \param mask the signals that it blocks.
    /// \param work what it does. It must not return.
    /// \throws std::system_error when there cannot be another process.
    ChildProcess(const Streams& streams, const sigset_t& mask, const std::function<void()>& work);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    pid_t id() const { return m_id; }
    /// Whether it has ended; its group may live on.
    bool hasEnded() const;
    /// Sends \p signal to its group, as a terminal does.
    void signalGroup(int signal) const;
    /// Kills it, and what is left of its group.
    void kill() const;
    /// Kills it unless it has ended, and what is left of its group. Call nothing after this.
    /// \return what waitpid() tells of it. Until then its id, and its group's, are nobody else's.
    int reap();

private:
    pid_t m_id;
    bool m_isReaped = false;
};

}  // namespace vexa::runner
