#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vexa::vexautilutil {

// Splits a text into lines in place, and appends the offset of each line's first byte to `offsets`.
//
// A line feed ends a line. The function replaces line feeds and carriage returns by NUL. A NUL in the text ends it; the
// bytes after it are unchanged. `text[size]` must be NUL.
// Throws std::bad_alloc if there is no memory for an offset; `offsets` then has the lines before that one.
void splitLines(char* text, std::size_t size, std::vector<uint64_t>& offsets);

}  // namespace vexa::vexautilutil
