#pragma once

#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// \name Tests of every command of the macros
/// @{
Verdict commandsInOrder(Trial& trial);
Verdict commandsAlone(Trial& trial);
Verdict commandsTwice(Trial& trial);
Verdict commandsInRandomOrder(Trial& trial);
Verdict commandsFromSecondAddOn(Trial& trial);
/// @}

}  // namespace vexa::runner
