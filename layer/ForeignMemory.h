/// \file
/// Reads the program's memory at addresses that may be wrong. The kernel does it, so that a wrong one does no harm.
#pragma once

#include <cstddef>
#include <string>

namespace vexa::layer {

/// Copies \p size bytes.
/// \return false if they are not readable.
bool readMemory(const void* from, void* to, std::size_t size);

/// The text at \p address, up to its end, to the end of readable memory, or to the longest text of a message.
std::string readText(const char* address);

}  // namespace vexa::layer
