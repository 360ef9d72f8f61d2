#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vexa::vexautilutil {

// How many bytes are searched at once.
enum class Vectors { None, Sse2, Avx2 };

// Returns the widest vectors that this processor has.
Vectors widestVectors();

// The memory pages that a large table of lines should get. The kernel may ignore it.
enum class Pages { Usual, Large };

// Splits a text into lines in place, and appends the offset of each line's first byte to `offsets`. The processor must
// have `vectors`.
//
// A line feed ends a line. The function replaces line feeds and carriage returns by NUL. A NUL in the text ends it; the
// bytes after it are unchanged. `text[size]` must be NUL.
// Throws std::bad_alloc if there is no memory for an offset; `offsets` then has the lines before that one.
void splitLines(char* text, std::size_t size, std::vector<uint64_t>& offsets, Pages pages = Pages::Usual,
                Vectors vectors = widestVectors());

}  // namespace vexa::vexautilutil
