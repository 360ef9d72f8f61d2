#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexa::runner {

/// Breaks \p text at blanks into lines of at most \p width bytes. A word that is longer has a line of its own.
/// \param first starts the first line; the other lines start with as many blanks
std::string wrapped(std::string_view text, std::size_t width, const std::string& first = "");

}  // namespace vexa::runner
