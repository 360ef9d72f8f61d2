#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexa::runner {

/// The width of the UTF-8 text \p text on a terminal, in columns. A byte that is not part of a character counts as one.
std::size_t widthOf(std::string_view text);

/// Cuts \p text to at most \p columns columns. A text that was cut ends with an ellipsis.
///
///     cutToWidth("Größe", 5) -> "Größe"
///     cutToWidth("Größe", 4) -> "Grö…"
///     cutToWidth("中文", 3)   -> "中…"
std::string cutToWidth(std::string_view text, std::size_t columns);

/// \p text on one line: each control character becomes a blank, and each byte that is not part of a character a '?'.
std::string asOneLine(std::string_view text);

}  // namespace vexa::runner
