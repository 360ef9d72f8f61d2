#pragma once

#include <csignal>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// Returns true if this process ignores \p signal. It may have inherited this from its parent.
inline bool isIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// Handles a signal as long as this object lives.
class SignalHandler : NonCopyable {
public:
    /// \param flags as for sigaction()
    SignalHandler(int signal, void (*handler)(int), int flags = 0) : m_signal(signal) {
        struct sigaction action {};
        action.sa_handler = handler;
        action.sa_flags = flags;
        sigaction(signal, &action, &m_before);
    }
    ~SignalHandler() { sigaction(m_signal, &m_before, nullptr); }

private:
    int m_signal;
    struct sigaction m_before {};
};

/// Sets which signals this thread blocks, as long as this object lives. Threads that are created during this time
/// inherit the setting.
class SignalMask : NonCopyable {
public:
    explicit SignalMask(const sigset_t& blocked) { pthread_sigmask(SIG_SETMASK, &blocked, &m_before); }
    ~SignalMask() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

private:
    sigset_t m_before{};
};

inline sigset_t allSignals() {
    sigset_t all;
    sigfillset(&all);
    return all;
}

}  // namespace vexa::runner
