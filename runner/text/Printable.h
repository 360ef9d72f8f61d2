#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexa::runner {

/// \p text such that a terminal only shows it, whoever wrote it: a byte that is no part of a printable UTF-8 character
/// becomes `\xHH`. Line feeds and tabs stay.
///
///     printable("a\033[2Jb")  -> "a\x1B[2Jb", with a backslash
///     printable("a\xFF\nb")   -> "a\xFF", a line feed, "b"
///
/// Not printable are control characters (those of ASCII and U+0080 to U+009F), the characters that turn the direction
/// of what follows (U+202A to U+202E, U+2066 to U+2069), and what is not valid UTF-8. Text that was made printable
/// before stays as it is.
std::string printable(std::string_view text);

/// The same on one line: a line feed becomes `\n`, and a tab `\t`.
std::string printableLine(std::string_view text);

/// How many bytes the printable character has that \p text begins with; 0 when it begins with none, or is empty.
std::size_t printableLength(std::string_view text);

}  // namespace vexa::runner
