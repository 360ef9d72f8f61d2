#pragma once

#include <string_view>

namespace vexa::runner {

/// Returns true if \p text starts with \p start.
inline bool startsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

}  // namespace vexa::runner
