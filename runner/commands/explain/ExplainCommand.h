#pragma once

#include "options/CommandLine.h"

namespace vexa::runner {

/// Adds `explain`, which tells of the rules of the host's contract.
void addExplainCommand(CLI::App& app, Action& chosen);

}  // namespace vexa::runner
