#pragma once

#include "options/CommandLine.h"

namespace vexa::runner {

/// Adds the option for when messages are in colour, which takes effect when it is found.
void addColourOption(CLI::App& command);

}  // namespace vexa::runner
