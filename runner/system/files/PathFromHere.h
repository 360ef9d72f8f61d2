#pragma once

#include <string>

namespace vexa::runner {

/// Returns \p file relative to the current folder if it is below this folder, and otherwise its absolute path.
std::string pathFromHere(const std::string& file);

}  // namespace vexa::runner
