#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexa::runner {

/// Makes text from add-ons and files safe to print: it cannot control the terminal. Each byte that is not part of a
/// printable UTF-8 character becomes `\xHH`. Line feeds and tabs stay.
///
///     printable("a\033[2Jb")  -> "a\x1B[2Jb", with a backslash
///     printable("a\xFF\nb")   -> "a\xFF", a line feed, "b"
///
/// Not printable are control characters (ASCII, and U+0080 to U+009F), the characters that change the direction of the
/// text (U+202A to U+202E, U+2066 to U+2069), and invalid UTF-8. A second call changes nothing.
std::string printable(std::string_view text);

/// Makes text printable() on one line: a line feed becomes `\n`, and a tab `\t`.
std::string printableLine(std::string_view text);

/// Returns the size in bytes of the printable character at the start of \p text; 0 if there is none.
std::size_t printableLength(std::string_view text);

}  // namespace vexa::runner
