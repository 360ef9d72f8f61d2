#pragma once

#include <string>
#include <vector>

namespace vexa::runner {

/// Returns the names that the user most likely meant by \p name.
/// \return at most three of \p names: names that contain \p name, or that differ from it in a few characters.
/// Letter case does not matter.
std::vector<std::string> nearNames(const std::string& name, const std::vector<std::string>& names);

/// "a", "a or b", "a, b or c"
std::string alternatives(const std::vector<std::string>& names);

}  // namespace vexa::runner
