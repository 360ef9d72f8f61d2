#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "commands/run/Resume.h"
#include "options/ExitStatus.h"
#include "session/MacroRun.h"

namespace vexa::runner {

/// Runs each macro file in its own process, \p jobs at a time. Prints the outputs in the order of the files, and then a
/// summary.
/// \return the highest exit status of the runs.
ExitStatus_e runMacros(const RunOptions& options, const std::vector<std::string>& macroFiles, std::size_t jobs);

/// Runs the macro files that \p earlier has left, and appends their results to the file of RunOptions::json.
/// \return the highest exit status of all macro files, including those that are done.
ExitStatus_e resumeMacros(const RunOptions& options, const CutOffRun& earlier, std::size_t jobs);

}  // namespace vexa::runner
