#pragma once

#include <string>

#include "trace/CallLines.h"

namespace vexa::runner {

/// Returns the differences between two runs for users: the first one with the lines around it, and a table of the
/// commands that differ. Empty if the runs are equal.
///
///     first difference: STATS MEAN (sweep.macro:3)
///         VexaUtilLockStart(STATS)
///       - VexaUtilStringAlloc(3, "text") = string#1
///       + VexaUtilStringAlloc(4, "text") = string#1
///
///     ADDED  GONE  REORDERED  COMMAND
///     1      1     0          STATS MEAN
std::string traceDifference(const CallLines& before, const CallLines& now);

}  // namespace vexa::runner
