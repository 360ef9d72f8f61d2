#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ContractOptions.h"
#include "ExitStatus.h"
#include "trace/TraceOutputs.h"

namespace vexa::runner {

/// What a run of a macro file is asked for.
struct RunOptions {
    std::string macroFile;               ///< `-` is the standard input
    std::vector<std::string> addOns;     ///< the files to load
    std::optional<std::string> record;   ///< where the recorded commands go
    std::optional<std::string> journal;  ///< where the journal goes
    std::optional<std::string> style;    ///< the style file
    std::optional<std::string> json;     ///< where the results for other programs go
    std::optional<int> jsonDescriptor;   ///< the same, open already; the run takes it over
    ContractOptions contract;            ///< what of the host's contract is asked for
    TraceOptions trace;                  ///< where the traces go
    bool batch = false;                  ///< the host says that it is in batch mode
    bool keepGoing = false;              ///< run on after a failed command
    bool verbose = false;                ///< show each command, and a summary
};

/// Runs a macro file as \p options say. Ends the program when a command takes longer than it may.
ExitStatus_e runMacro(const RunOptions& options);

}  // namespace vexa::runner
