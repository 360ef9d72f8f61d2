#pragma once

#include "options/CommandLine.h"

namespace vexa::runner {

/// Adds `run`, which runs a macro file. The standard output is left to the add-ons. SIGINT stops the command that runs,
/// and no other is begun; what was recorded is written all the same.
void addRunCommand(CLI::App& app, Action& chosen);

}  // namespace vexa::runner
