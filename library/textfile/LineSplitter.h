#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vexa::vexautilutil {

// Splits a text into lines where it lies, and appends the offset of each line's first byte to `offsets`.
//
// A line feed ends a line, and becomes NUL. Every carriage return becomes NUL, too, and ends nothing. A NUL ends the
// text: what lies behind it is left alone. `text[size]` must be NUL.
// std::bad_alloc when there is no memory for the lines that there are: `offsets` then has lines up to one for which
// there was none.
void splitLines(char* text, std::size_t size, std::vector<uint64_t>& offsets);

}  // namespace vexa::vexautilutil
