#include "system/processes/AwaitedSignals.h"

#include <sys/signalfd.h>

#include "system/LastError.h"
#include "system/processes/Signals.h"

namespace vexa::runner {

AwaitedSignals::AwaitedSignals() {
    sigset_t awaited;
    sigemptyset(&awaited);
    sigaddset(&awaited, SIGCHLD);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP}) {
        if (!isIgnored(signal)) sigaddset(&awaited, signal);
    }
    m_descriptor = Descriptor(signalfd(-1, &awaited, SFD_NONBLOCK | SFD_CLOEXEC));
    if (!m_descriptor.isOpen()) throwLastError("signalfd");
    sigprocmask(SIG_BLOCK, &awaited, &m_before);
}

AwaitedSignals::~AwaitedSignals() { sigprocmask(SIG_SETMASK, &m_before, nullptr); }

std::optional<int> AwaitedSignals::next() const {
    signalfd_siginfo info{};
    if (read(descriptor(), &info, sizeof info) != static_cast<ssize_t>(sizeof info)) return std::nullopt;
    m_wasInterrupted |= info.ssi_signo == SIGINT;
    return static_cast<int>(info.ssi_signo);
}

bool endsProgram(int signal) { return signal == SIGTERM || signal == SIGHUP || signal == SIGQUIT; }

}  // namespace vexa::runner
