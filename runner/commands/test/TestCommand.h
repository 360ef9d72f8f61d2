#pragma once

#include "options/CommandLine.h"

namespace vexa::runner {

/// Adds `test`, which compares what macros do with what they are expected to do.
void addTestCommand(CLI::App& app, Action& chosen);

}  // namespace vexa::runner
