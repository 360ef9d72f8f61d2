#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vexa::vexautilutil {

// Room enough for any number that is appended below in the classic locale.
constexpr std::size_t kLongestNumber = 24;

// Append a number to a text as a fresh output stream with default settings would write it: under the global C++
// locale of the moment, doubles to six significant digits. Under the classic locale, the usual case, no stream is
// made; that is several times as fast and gives the same bytes.
// Memory exhaustion comes out as std::bad_alloc, never as a shortened text.
void appendNumber(std::string& text, int64_t value);
void appendNumber(std::string& text, uint64_t value);
void appendNumber(std::string& text, double value);

// Reads a text of nothing but decimal digits, under the classic locale: most integers there are, and the quick way.
// False, with `value` untouched, for every other text and locale; it may still be a number then.
bool readPlainDigits(const std::string& text, uint64_t& value);

}  // namespace vexa::vexautilutil
