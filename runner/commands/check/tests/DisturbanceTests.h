#pragma once

#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// \name Tests of commands that something comes between
/// In each case the command fails with a message, or succeeds; it keeps the contract, what it recorded can be replayed,
/// and the same command behind it does what it always does.
/// @{
Verdict hostCallFails(Trial& trial);
Verdict stopPressed(Trial& trial);
Verdict allocationFails(Trial& trial);
/// @}

}  // namespace vexa::runner
