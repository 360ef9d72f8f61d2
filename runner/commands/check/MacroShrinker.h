#pragma once

#include <chrono>
#include <string>

#include "commands/check/trial/Trial.h"
#include "system/processes/AwaitedSignals.h"

namespace vexa::runner {

/// Makes a macro that shows something smaller, as long as it shows the same: a crash by the same signal, a hang, or
/// breaches of the same rules. Each try is a process of its own, for the add-on may take it down.
/// \param macro   as from macroOf().
/// \param timeout for each command.
/// \return \p macro itself when it does not show a thing by itself, or when there is nothing smaller.
/// \throws std::system_error when there cannot be another process.
/// \throws EndedBySignal when one of \p signals came that ends the program.
std::string shrunkMacro(const AwaitedSignals& signals, const Subject& subject, std::chrono::milliseconds timeout,
                        const std::string& macro);

}  // namespace vexa::runner
