#pragma once

#include <link.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace vexa::standin {

/// Returns bytes as hexadecimal digits.
inline std::string hexOf(const unsigned char* bytes, std::size_t count) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (std::size_t i = 0; i != count; ++i) {
        text += kDigits[bytes[i] / 16];
        text += kDigits[bytes[i] % 16];
    }
    return text;
}

/// Returns the build id of an object in memory, as hexadecimal digits; empty if it has none.
/// \param headers  its program headers, \p count of them.
/// \param loadedAt what to add to an address of the object's file to get that in memory.
std::string buildIdOf(const ElfW(Phdr) * headers, std::size_t count, std::uintptr_t loadedAt);

}  // namespace vexa::standin
