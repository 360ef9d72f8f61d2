#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ExitStatus.h"

namespace vexa::runner {

/// What `vexa-standin run` was asked for.
struct RunOptions {
    std::string macroFile;               ///< `-` is the standard input
    std::vector<std::string> addOns;     ///< the files to load
    std::optional<std::string> record;   ///< where the recorded commands go
    std::optional<std::string> journal;  ///< where the journal goes
    bool batch = false;                  ///< the host says that it is in batch mode
    bool keepGoing = false;              ///< run on after a failed command
    bool verbose = false;                ///< show each command, and a summary
};

/// Runs a macro file. The standard output is left to the add-ons. SIGINT stops the command that runs, and no other is
/// begun; what was recorded is written all the same.
ExitStatus_e runMacro(const RunOptions& options);

}  // namespace vexa::runner
