#pragma once

#include <set>
#include <string>

#include "vexastandin/Host.h"

namespace vexa::runner {

/// The message that no add-on \p id is loaded: it names the loaded ones, and those that the user may mean.
std::string noSuchAddOn(const std::string& id, const std::set<std::string>& loaded);

/// The ids of the add-ons that \p host has loaded.
std::set<std::string> loadedIds(const standin::Host& host);

}  // namespace vexa::runner
