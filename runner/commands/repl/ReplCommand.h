#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `repl` runs the commands that the user types.
Command replCommand();

}  // namespace vexa::runner
