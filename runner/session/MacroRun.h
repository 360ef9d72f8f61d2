#pragma once

#include <optional>
#include <string>
#include <vector>

#include "options/ContractOptions.h"
#include "options/ExitStatus.h"
#include "session/watch/Notes.h"
#include "session/watch/ProcessBox.h"
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
    ContractOptions contract;            ///< what of the host's contract is asked for
    TraceOptions trace;                  ///< where the traces go
    bool batch = false;                  ///< the host says that it is in batch mode
    bool keepGoing = false;              ///< run on after a failed command
    bool verbose = false;                ///< show each command, and a summary
    bool inProcess = false;              ///< run in this process, for a debugger
};

/// Runs a macro file in this process, as \p options say. Ends the process when a command takes longer than it may.
/// \param box   gets what the add-ons do.
/// \param notes get what is to be kept: the recording, the journal and the results.
ExitStatus_e runMacro(const RunOptions& options, ProcessBox& box, NotesInterface& notes);

}  // namespace vexa::runner
