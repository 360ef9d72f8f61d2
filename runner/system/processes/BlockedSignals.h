#pragma once

#include <pthread.h>

#include <csignal>

namespace vexa::runner {

/// Blocks all signals as long as this object lives. Threads that are created meanwhile inherit that, so the signals go
/// to the threads of the add-ons.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

private:
    sigset_t m_before{};
};

}  // namespace vexa::runner
