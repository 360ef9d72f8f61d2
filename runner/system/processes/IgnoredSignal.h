#pragma once

#include <csignal>

namespace vexa::runner {

/// Whether this process ignores \p signal. It may have inherited that from its parent.
inline bool isIgnored(int signal) {
    struct sigaction action {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace vexa::runner
