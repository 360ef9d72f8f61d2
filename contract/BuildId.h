#pragma once

#include <link.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace vexa::standin {

/// Returns the build id of an object in memory, as hexadecimal digits; empty if it has none.
/// \param headers  its program headers, \p count of them.
/// \param loadedAt what to add to an address of the object's file to get that in memory.
std::string buildIdOf(const ElfW(Phdr) * headers, std::size_t count, std::uintptr_t loadedAt);

}  // namespace vexa::standin
