#pragma once

#include "options/CommandLine.h"

namespace vexa::runner {

/// Adds `list`, which prints a table of add-ons in the order given: id, title, file.
void addListCommand(CLI::App& app, Action& chosen);

}  // namespace vexa::runner
