#pragma once

#include <csignal>

namespace vexa::runner {

/// Whether this process ignores \p signal, as it may have been told to when it was started.
inline bool isIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace vexa::runner
