#pragma once

#include <set>
#include <string>
#include <vector>

#include "session/watch/ProcessBox.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// Loads the add-on \p file into \p host, and tells when it cannot be loaded.
/// \return whether it was loaded.
bool loadAddOn(standin::Host& host, const std::string& file);

/// Loads the add-ons \p files into \p host, and tells of each that cannot be loaded.
/// \param box gets what the add-ons do.
/// \return whether all of them were loaded.
bool loadAddOns(standin::Host& host, const std::vector<std::string>& files, ProcessBox& box);

/// The ids of the add-ons that \p host has loaded.
std::set<std::string> loadedIds(const standin::Host& host);

}  // namespace vexa::runner
