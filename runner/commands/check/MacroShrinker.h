#pragma once

#include <string>

#include "commands/check/WatchedProcess.h"
#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// Makes a macro that shows an error smaller. The smaller macro shows the same error: a crash by the same signal, a
/// hang, or breaches of the same rules. Each try runs in its own process, because the add-on may end the process.
/// \param macro   comes from macroOf().
/// \return \p macro itself if it shows no error by itself, or cannot be made smaller.
/// \throws std::system_error if a process cannot be started.
/// \throws EndedBySignal if a signal that ends the program arrives.
std::string shrunkMacro(const TestSetting& setting, const Subject& subject, const std::string& macro);

}  // namespace vexa::runner
