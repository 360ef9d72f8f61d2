#pragma once

#include <set>
#include <string>

namespace vexa::runner {

/// The message that no add-on \p id is loaded: it names the loaded ones, and those that the user may mean.
std::string noSuchAddOn(const std::string& id, const std::set<std::string>& loaded);

}  // namespace vexa::runner
