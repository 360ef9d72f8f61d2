#pragma once

namespace vexa::runner {

/// The exit statuses of the runner.
enum class ExitStatus_e : int {
    AllWell = 0,
    CommandFailed = 1,
    BadUsageOrInput = 2,
    ContractViolated = 3,
    CommandHung = 4,
    Stopped = 130,  ///< as shells say of a program that SIGINT ended
};

}  // namespace vexa::runner
