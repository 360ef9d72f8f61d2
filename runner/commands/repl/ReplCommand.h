#pragma once

#include "options/CommandLine.h"

namespace vexa::runner {

/// Adds `repl`, which runs the commands that the user types.
void addReplCommand(CLI::App& app, Action& chosen);

}  // namespace vexa::runner
