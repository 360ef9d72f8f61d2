#pragma once

#include <optional>
#include <string>
#include <vector>

#include "options/ExitStatus.h"
#include "session/StopPlace.h"

namespace vexa::runner {

/// The name of the hidden command that runs a macro in the debugger, and the variable of the environment that says
/// where it stops.
inline constexpr const char* kDebuggedCommand = "debugged";
inline constexpr const char* kStopVariable = "VEXA_STANDIN_STOP_AT";

/// A run in a debugger.
struct DebuggerCall {
    std::vector<std::string> words;       ///< of the command line, after `vexa-standin debugged`
    std::vector<std::string> addOns;      ///< the files of the add-ons
    StopPlace place;                      ///< where the run stops
    bool batch = false;                   ///< print the place and end, without a prompt
    std::vector<std::string> arguments;   ///< of the user, for the debugger
    std::optional<std::string> debugger;  ///< the one that the user wants; see findDebugger()
};

/// Replaces this process by the debugger, which runs the macro.
/// \return only if there is no debugger or it cannot work here; the reason was told.
ExitStatus_e enterDebugger(const DebuggerCall& call);

}  // namespace vexa::runner
