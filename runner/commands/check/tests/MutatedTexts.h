#pragma once

#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// Runs damaged commands, systematically and then at random. Nothing is expected of them but the contract.
Verdict mutatedTexts(Trial& trial);

}  // namespace vexa::runner
