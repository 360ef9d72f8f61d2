#pragma once

#include <string>
#include <vector>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// Loads the add-ons \p files into \p host, and tells of each that cannot be loaded.
/// \return whether all of them were loaded.
bool loadAddOns(standin::Host& host, const std::vector<std::string>& files);

/// Unloads the add-ons of \p host; what went wrong on the way are warnings.
void unloadAddOns(standin::Host& host);

}  // namespace vexa::runner
