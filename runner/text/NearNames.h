#pragma once

#include <string>
#include <vector>

namespace vexa::runner {

/// Those of \p names that may most likely be meant by \p name; three at most. A part of a name means it, and
/// so does a name with a few characters missing, added, replaced or swapped. Case does not matter.
std::vector<std::string> nearNames(const std::string& name, const std::vector<std::string>& names);

/// "a", "a or b", "a, b or c"
std::string alternatives(const std::vector<std::string>& names);

}  // namespace vexa::runner
