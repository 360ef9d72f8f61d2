#pragma once

#include "options/CommandLine.h"

namespace vexa::runner {

/// Adds `manual`, which prints what the build installs beside the program: the manual page, and the completion of bash.
/// The help does not show it.
void addManualCommand(CLI::App& app, Action& chosen);

}  // namespace vexa::runner
