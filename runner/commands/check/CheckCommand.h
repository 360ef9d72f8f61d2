#pragma once

#include "options/CommandLine.h"

namespace vexa::runner {

/// Adds `check`, which runs the tests of checkTests() on an add-on.
void addCheckCommand(CLI::App& app, Action& chosen);

}  // namespace vexa::runner
