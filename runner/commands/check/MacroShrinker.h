#pragma once

#include <string>

#include "commands/check/WatchedProcess.h"
#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// Makes a macro smaller that shows an error. The smaller macro shows the same: a crash by the same signal, a hang, or
/// breaches of the same rules. Each try runs in a process of its own, because the add-on may end it.
/// \param macro   comes from macroOf().
/// \return \p macro itself if it shows no error by itself, or cannot be made smaller.
/// \throws std::system_error if a process cannot be started.
/// \throws EndedBySignal if a signal came that ends the program.
std::string shrunkMacro(const TestSetting& setting, const Subject& subject, const std::string& macro);

}  // namespace vexa::runner
