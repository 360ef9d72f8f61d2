#pragma once

#include <string_view>

namespace vexa::runner {

/// Whether \p text begins with \p start.
inline bool startsWith(std::string_view text, std::string_view start) { return text.substr(0, start.size()) == start; }

}  // namespace vexa::runner
