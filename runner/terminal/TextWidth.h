#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexa::runner {

/// How many columns of a terminal the UTF-8 text \p text takes. A byte that belongs to no character counts as one.
std::size_t widthOf(std::string_view text);

/// \p text, or the start of it with an ellipsis, so that it takes at most \p columns columns.
///
///     cutToWidth("Größe", 5) -> "Größe"
///     cutToWidth("Größe", 4) -> "Grö…"
///     cutToWidth("中文", 3)   -> "中…"
std::string cutToWidth(std::string_view text, std::size_t columns);

/// \p text on one line: each control character is a blank, and each byte that belongs to no character a '?'.
std::string asOneLine(std::string_view text);

}  // namespace vexa::runner
