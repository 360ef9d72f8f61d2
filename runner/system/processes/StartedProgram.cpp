#include "system/processes/StartedProgram.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "system/Descriptor.h"
#include "system/LastError.h"
#include "system/processes/ExecArguments.h"
#include "system/processes/Signals.h"
#include "system/processes/ThreadTracer.h"

namespace vexa::runner {
namespace {

constexpr int kCannotStart = 127;

// The file system and the loader may refuse a file that looks right. The parent learns it through `problem`.
[[noreturn]] void becomeProgram(const std::string& path, std::vector<char*> arguments, const sigset_t& mask,
                                int problem) {
    ::signal(SIGXFSZ, SIG_DFL);  // this program ignores it
    sigprocmask(SIG_SETMASK, &mask, nullptr);
    execv(path.c_str(), arguments.data());
    const int error = errno;
    [[maybe_unused]] const ssize_t ignored = write(problem, &error, sizeof error);
    _exit(kCannotStart);
}

}  // namespace

StartedProgram::StartedProgram(const std::string& path, const std::vector<std::string>& arguments,
                               const std::vector<std::pair<std::string, std::string>>& variables,
                               const sigset_t& mask) {
    std::vector<char*> words = execArguments(arguments);
    // If SIGCHLD is ignored, the system reaps children before we can.
    const bool ignoresChildren = isIgnored(SIGCHLD);
    if (ignoresChildren) ::signal(SIGCHLD, SIG_DFL);
    Pipe problem;
    std::fflush(nullptr);
    m_id = fork();
    if (m_id < 0) throwLastError("no other process");
    if (m_id == 0) {
        if (ignoresChildren) ::signal(SIGCHLD, SIG_IGN);
        for (const auto& [name, value] : variables) setenv(name.c_str(), value.c_str(), 1);
        becomeProgram(path, std::move(words), mask, problem.writer.get());
    }
    problem.writer.close();
    fcntl(problem.reader.get(), F_SETFL, 0);  // wait until the program runs
    int error = 0;
    ssize_t size = 0;
    while ((size = read(problem.reader.get(), &error, sizeof error)) < 0 && errno == EINTR) {}
    if (size == 0) return;
    waitpid(m_id, nullptr, 0);
    errno = error;
    throwLastError();
}

std::optional<int> StartedProgram::change() {
    siginfo_t info{};
    constexpr int kPeek = WEXITED | WSTOPPED | WNOHANG | WNOWAIT;
    const bool isThere = !m_hasEnded && waitid(P_PID, static_cast<id_t>(m_id), &info, kPeek) == 0 && info.si_pid != 0;
    if (!isThere || info.si_code == CLD_TRAPPED) return std::nullopt;
    m_hasEnded = isEnd(info);
    if (m_hasEnded) collectThreadsOf(m_id);
    int status = 0;
    waitpid(m_id, &status, WUNTRACED);
    return status;
}

}  // namespace vexa::runner
