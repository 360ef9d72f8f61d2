#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "options/ExitStatus.h"
#include "session/MacroRun.h"

namespace vexa::runner {

/// Runs each macro file in its own process, \p jobs at a time. Prints the outputs in the order of the files, and then a
/// summary.
/// \return the highest exit status of the runs.
ExitStatus_e runMacros(const RunOptions& options, const std::vector<std::string>& macroFiles, std::size_t jobs);

}  // namespace vexa::runner
