#pragma once

#include <string>

namespace vexa::runner {

/// The exit statuses of the runner.
enum class ExitStatus_e : int {
    AllWell = 0,
    CommandFailed = 1,
    BadUsageOrInput = 2,
    ContractViolated = 3,
    CommandHung = 4,
    ProcessEnded = 5,  ///< an add-on ended its process
    Stopped = 130,     ///< the status that shells report for a program that SIGINT ended
};

/// Shells report this plus the number of the signal for a program that a signal ended.
inline constexpr int kKilledBySignal = 128;

/// Returns a text for users; empty if the runner has no such status.
std::string meaningOf(ExitStatus_e status);

}  // namespace vexa::runner
