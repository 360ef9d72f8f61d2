#include "ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "IgnoredSignal.h"
#include "LastError.h"

namespace vexa::runner {
namespace {

void redirect(const ChildProcess::Outputs& outputs) {
    const int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, STDIN_FILENO);
    if (nothing > STDERR_FILENO) close(nothing);
    dup2(outputs.out, STDOUT_FILENO);
    dup2(outputs.err, STDERR_FILENO);
}

[[noreturn]] void becomeChild(pid_t parent, const ChildProcess::Outputs& outputs, const std::function<int()>& work) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(EXIT_FAILURE);
    redirect(outputs);
    std::exit(work());
}

}  // namespace

ChildProcess::ChildProcess(const Outputs& outputs, const std::function<int()>& work) {
    // A process whose end is ignored is gone before we can look. To say so again would lose a signal that waits.
    if (isIgnored(SIGCHLD)) ::signal(SIGCHLD, SIG_DFL);
    std::fflush(nullptr);  // what is not yet written would be written twice
    const pid_t parent = getpid();
    m_id = fork();
    if (m_id < 0) throwLastError("no other process");
    if (m_id == 0) becomeChild(parent, outputs, work);
    setpgid(m_id, m_id);
}

ChildProcess::~ChildProcess() {
    if (!m_isReaped) reap();
}

bool ChildProcess::hasEnded() const {
    siginfo_t info{};
    const auto id = static_cast<id_t>(m_id);
    return waitid(P_PID, id, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid == m_id;
}

void ChildProcess::interrupt() const { ::kill(-m_id, SIGINT); }

void ChildProcess::kill() const {
    ::kill(-m_id, SIGKILL);
    ::kill(m_id, SIGKILL);  // it may have left its group
}

int ChildProcess::reap() {
    kill();
    int waitStatus = 0;
    while (waitpid(m_id, &waitStatus, 0) < 0 && errno == EINTR) {}
    m_isReaped = true;
    return waitStatus;
}

}  // namespace vexa::runner
