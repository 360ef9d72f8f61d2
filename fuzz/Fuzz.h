#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

/// What each target defines: tries one input. A property that does not hold ends the program by require().
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace vexa::fuzz {

/// Ends the program unless \p holds, which is what the fuzzer looks for.
inline void require(bool holds, const char* property, const std::string& detail = {}) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n%s\n", property, detail.c_str());
    std::abort();
}

/// An input as text.
inline std::string textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

}  // namespace vexa::fuzz
