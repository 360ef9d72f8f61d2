#pragma once

#include <string>
#include <vector>

#include "session/MacroRun.h"

namespace vexa::runner {

/// The words after `vexa-standin debug` that repeat a run: the macro file, and the options on which the calls of the
/// add-ons depend. Pass the options as the user gave them, without the project file, which `debug` reads itself.
/// \return empty if the run cannot be repeated, because an input was the standard input.
std::vector<std::string> debugWordsOf(const RunOptions& options);

/// Returns the words that make `debug` stop at \p place: `--call 7`.
std::vector<std::string> wordsOf(const StopPlace& place);

/// Returns the command line of `debug` for a shell.
std::string debugCall(const std::vector<std::string>& words, const StopPlace& place);

}  // namespace vexa::runner
