#pragma once

#include <optional>
#include <string>
#include <vector>

#include "options/ExitStatus.h"
#include "session/ProblemOutputs.h"
#include "session/Session.h"
#include "session/StopPlace.h"
#include "session/watch/Notes.h"
#include "trace/TraceOutputs.h"

namespace vexa::runner {

/// The options of a run of a macro file.
struct RunOptions : SessionOptions {
    std::string macroFile;                  ///< `-` is the standard input
    std::optional<std::string> record;      ///< where the recorded commands go
    std::optional<std::string> journal;     ///< where the journal goes
    std::optional<std::string> json;        ///< where the results for other programs go
    ProblemOptions problems;                ///< where the problems for build servers go
    TraceOptions trace;                     ///< where the traces go
    std::optional<std::string> coverage;    ///< the coverage file to add to
    bool keepGoing = false;                 ///< continue after a failed command
    bool verbose = false;                   ///< show each command, and a summary
    std::optional<StopPlace> stop;          ///< where the run stops for a debugger
    std::vector<std::string> debugOptions;  ///< see debugOptionsOf(); empty for no hints about `debug`
};

/// Runs a macro file in this process. Ends the process if work takes longer than the time limit.
/// \param box   receives what the add-ons are doing.
/// \param notes receives the recording, the journal, the results and the problems.
ExitStatus_e runMacro(const RunOptions& options, ProcessBox& box, NotesInterface& notes);

}  // namespace vexa::runner
