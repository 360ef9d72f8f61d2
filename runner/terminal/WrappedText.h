#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexa::runner {

/// \p text in lines of at most \p width bytes, as far as its words allow. It is broken at blanks.
/// \param first what the first line begins with; the others begin with as many blanks
std::string wrapped(std::string_view text, std::size_t width, const std::string& first = "");

}  // namespace vexa::runner
