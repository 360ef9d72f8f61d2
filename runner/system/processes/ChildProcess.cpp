#include "system/processes/ChildProcess.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "system/LastError.h"
#include "system/processes/Signals.h"
#include "system/processes/ThreadTracer.h"

namespace vexa::runner {
namespace {

// The system stops a background process that reads from its terminal.
bool mustNotRead(const ChildProcess::Streams& streams) { return streams.readsNothing || isatty(STDIN_FILENO) != 0; }

void redirect(const ChildProcess::Streams& streams) {
    if (mustNotRead(streams)) {
        const int nothing = open("/dev/null", O_RDONLY);
        dup2(nothing, STDIN_FILENO);
        if (nothing > STDERR_FILENO) close(nothing);
    }
    if (streams.out >= 0) dup2(streams.out, STDOUT_FILENO);
    if (streams.err >= 0) dup2(streams.err, STDERR_FILENO);
}

[[noreturn]] void becomeChild(pid_t parent, const ChildProcess::Streams& streams, const sigset_t& mask,
                              const std::function<void()>& work) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(EXIT_FAILURE);
    // Some terminals stop background processes that write.
    if (isatty(STDERR_FILENO) != 0 || isatty(STDOUT_FILENO) != 0) ::signal(SIGTTOU, SIG_IGN);
    redirect(streams);
    sigprocmask(SIG_SETMASK, &mask, nullptr);
    work();
    std::abort();
}

}  // namespace

ChildProcess::ChildProcess(const Streams& streams, const sigset_t& mask, const std::function<void()>& work) {
    // If SIGCHLD is ignored, the system reaps children before this process can. Otherwise it is not set again, because
    // that would drop a pending signal.
    if (isIgnored(SIGCHLD)) ::signal(SIGCHLD, SIG_DFL);
    std::fflush(nullptr);  // otherwise the child would write the buffered text again
    const pid_t parent = getpid();
    m_id = fork();
    if (m_id < 0) throwLastError("cannot create a process");
    if (m_id == 0) becomeChild(parent, streams, mask, work);
    setpgid(m_id, m_id);
}

ChildProcess::~ChildProcess() {
    if (!m_isReaped) reap();
}

bool ChildProcess::hasEnded() const {
    siginfo_t info{};
    const auto id = static_cast<id_t>(m_id);
    return waitid(P_PID, id, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && isEnd(info);
}

void ChildProcess::signalGroup(int signal) const { ::kill(-m_id, signal); }

void ChildProcess::kill() const {
    ::kill(-m_id, SIGKILL);
    ::kill(m_id, SIGKILL);  // also kill the child itself, which may have left its group
}

int ChildProcess::reap() {
    kill();
    collectThreadsOf(m_id);
    int waitStatus = 0;
    while (waitpid(m_id, &waitStatus, 0) < 0 ? errno == EINTR : WIFSTOPPED(waitStatus)) {}
    m_isReaped = true;
    return waitStatus;
}

}  // namespace vexa::runner
