#pragma once

namespace vexa::runner {

/// The exit statuses of the runner.
enum class ExitStatus_e : int {
    AllWell = 0,
    CommandFailed = 1,
    BadUsageOrInput = 2,
};

}  // namespace vexa::runner
