#pragma once

#include "options/CommandLine.h"

namespace vexa::runner {

/// Adds `new`, which writes the project of a new add-on.
void addNewCommand(CLI::App& app, Action& chosen);

}  // namespace vexa::runner
