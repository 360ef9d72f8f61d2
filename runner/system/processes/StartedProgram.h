#pragma once

#include <sys/types.h>

#include <csignal>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// A program that another one started, in its place: it has the same terminal, standard streams, process group and
/// signals. It is not ended with its parent.
///
/// Create it while the process has one thread.
class StartedProgram : NonCopyable {
public:
    /// \param path      the file.
    /// \param arguments with the name of the program at first.
    /// \param variables to add to the environment.
    /// \param mask      the signals that it blocks.
    /// \throws std::system_error if the system does not start it.
    StartedProgram(const std::string& path, const std::vector<std::string>& arguments,
                   const std::vector<std::pair<std::string, std::string>>& variables, const sigset_t& mask);

    pid_t id() const { return m_id; }
    void send(int signal) const { kill(m_id, signal); }
    /// What happened to it since the last call, as from waitpid(): it ended or was stopped. Does not wait. Leaves the
    /// stops of a traced program to the tracer.
    std::optional<int> change();

private:
    pid_t m_id;
    bool m_hasEnded = false;
};

}  // namespace vexa::runner
