#pragma once

#include <cstdint>
#include <string>

namespace vexa::vexautilutil {

// Append a number to a text as a fresh output stream with default settings would write it: under the global C++
// locale of the moment, doubles to six significant digits. Under the classic locale, the usual case, no stream is
// made; that is several times as fast and gives the same bytes.
// Memory exhaustion comes out as std::bad_alloc, never as a shortened text.
void appendNumber(std::string& text, int64_t value);
void appendNumber(std::string& text, double value);

}  // namespace vexa::vexautilutil
