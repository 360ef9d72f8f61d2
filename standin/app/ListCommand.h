#pragma once

#include <string>
#include <vector>

#include "ExitStatus.h"

namespace vexa::runner {

/// Prints a table of the add-ons \p files, in this order: id, title, file.
ExitStatus_e listAddOns(const std::vector<std::string>& files);

}  // namespace vexa::runner
