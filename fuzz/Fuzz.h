#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

/// Each target defines this function. It tests one input and calls require() for each property.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace vexa::fuzz {

/// Aborts the program if \p holds is false. The fuzzer then reports the input.
inline void require(bool holds, const char* property, const std::string& detail = {}) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n%s\n", property, detail.c_str());
    std::abort();
}

/// Returns an input as text.
inline std::string textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

}  // namespace vexa::fuzz
