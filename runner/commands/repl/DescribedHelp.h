#pragma once

#include <string>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// Returns the commands of \p addOn with their purposes, one per line.
std::string helpOfAddOn(const AddOnDescription& addOn);

/// Returns the form of \p command, its purpose, a table of its options, and an example.
std::string helpOfCommand(const AddOnDescription& addOn, const CommandDescription& command);

}  // namespace vexa::runner
