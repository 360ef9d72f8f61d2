#pragma once

#include <vector>

#include "commands/check/trial/Trial.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {

/// Runs \p steps in a session of its own, where each may be anything, and may fail. A task that shows its progress is
/// stopped by the user after some time: a damaged number can make it endless. What the last command recorded is played
/// back in another session, behind the same steps.
/// \return what was found on the way, until the add-on was unloaded.
std::vector<standin::Finding> findingsOf(Trial& trial, const std::vector<MacroCommand>& steps);

}  // namespace vexa::runner
