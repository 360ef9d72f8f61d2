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
    ProcessEnded = 5,  ///< an add-on ended the process it runs in
    Stopped = 130,     ///< as shells say of a program that SIGINT ended
};

/// What shells add to the number of a signal that ended a program.
inline constexpr int kKilledBySignal = 128;

/// For people; empty for a status that is none of the runner's.
std::string meaningOf(ExitStatus_e status);

}  // namespace vexa::runner
