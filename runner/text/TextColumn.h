#pragma once

#include <cstddef>
#include <string_view>

namespace vexa::runner {

/// How an editor counts the columns of a line.
enum class ColumnUnit_e {
    Utf8,  ///< bytes
    Utf16  ///< 2 for a character of four bytes in UTF-8, and 1 for any other character
};

/// Returns the column, counted from 0, of the byte \p at of \p line, which is UTF-8. A byte inside of a character has
/// the column of the character's start, and a byte past the end the column of the end.
///
///     columnAt("Größe", 6, ColumnUnit_e::Utf16)  -> 4
std::size_t columnAt(std::string_view line, std::size_t at, ColumnUnit_e unit);

/// Returns the first byte of the character at \p column of \p line; the size of the line if the column is past its end.
///
///     byteAt("Größe", 4, ColumnUnit_e::Utf16)  -> 6
std::size_t byteAt(std::string_view line, std::size_t column, ColumnUnit_e unit);

}  // namespace vexa::runner
