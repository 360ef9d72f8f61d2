#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "options/ExitStatus.h"
#include "session/MacroRun.h"

namespace vexa::runner {

/// Runs macro files as \p options say, \p jobs at a time, each in a process of its own. What each prints comes in the
/// order of the files, and then a summary.
/// \return the highest of their exit statuses: 128 and the number of the signal where one ended a process, as shells
/// do.
ExitStatus_e runMacros(const RunOptions& options, const std::vector<std::string>& macroFiles, std::size_t jobs);

}  // namespace vexa::runner
