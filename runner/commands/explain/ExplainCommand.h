#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `explain` prints the rules of the host's contract.
Command explainCommand();

}  // namespace vexa::runner
