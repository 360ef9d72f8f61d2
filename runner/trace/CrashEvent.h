#pragma once

#include <string>

#include "stacks/StackReport.h"

namespace vexa::runner {

/// How a process that ran add-ons has ended.
struct Crash {
    std::string message;  ///< `"STATS MEAN" ended the process: SIGSEGV (Segmentation fault)`
    StackReport stacks;
};

/// Returns the `args` of the event `crash` in a trace, as a JSON object.
std::string crashArguments(const Crash& crash);

/// Adds the event `crash` to the trace \p file of a process that has ended and has not finished the trace. Removes an
/// event that the process had not written completely. Does nothing if \p file is no trace, or cannot be written.
///
/// The event gets the time of the last event in the file, because the time of the crash is unknown.
void appendCrash(const std::string& file, const Crash& crash);

}  // namespace vexa::runner
