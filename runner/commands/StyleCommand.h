#pragma once

#include "options/CommandLine.h"

namespace vexa::runner {

/// Adds `style`, which prints a setting of a style file as add-ons get it from the library: its kind and its value.
void addStyleCommand(CLI::App& app, Action& chosen);

}  // namespace vexa::runner
