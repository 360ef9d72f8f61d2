#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace vexa::vexautilutil {

// The functions below append at most this many characters in the classic locale.
constexpr std::size_t kLongestNumber = 24;

// Append a number to a text as a new output stream with default settings would write it: in the global C++ locale, and
// doubles with six significant digits. In the classic locale, the usual one, they use no stream, which is faster and
// gives the same bytes.
// If memory runs out, they throw std::bad_alloc; they never append a part of the number.
void appendNumber(std::string& text, int64_t value);
void appendNumber(std::string& text, uint64_t value);
void appendNumber(std::string& text, double value);

// A fast path for most integers: reads a text of decimal digits in the classic locale. Returns false, and leaves
// `value` unchanged, for any other text and in any other locale, even if the text is a number.
bool readPlainDigits(const std::string& text, uint64_t& value);

}  // namespace vexa::vexautilutil
