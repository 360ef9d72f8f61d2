#pragma once

#include <sys/types.h>

#include <functional>

namespace vexa::runner {

/// A process that is forked off for some work, in a group of its own. There is nothing for it to read. Neither it nor
/// its group outlives this object, and it does not outlive the process that made it.
///
/// To be made while there is one thread.
class ChildProcess {
public:
    /// Where what it prints goes.
    struct Outputs {
        int out;  ///< a descriptor for its standard output
        int err;  ///< and for its standard error output
    };

    /// \param work what it does; what that returns is its exit status.
    /// \throws std::system_error when there cannot be another process.
    ChildProcess(const Outputs& outputs, const std::function<int()>& work);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    /// Whether it has ended; its group may live on.
    bool hasEnded() const;
    /// Sends SIGINT to its group, as a terminal does at Ctrl-C.
    void interrupt() const;
    /// Kills it, and what is left of its group.
    void kill() const;
    /// Kills it unless it has ended, and what is left of its group. Nothing else is to be called behind it.
    /// \return what waitpid() tells of it. Until then its id, and its group's, are nobody else's.
    int reap();

private:
    pid_t m_id;
    bool m_isReaped = false;
};

}  // namespace vexa::runner
