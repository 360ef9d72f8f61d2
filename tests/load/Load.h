#pragma once

#include <cstdlib>
#include <string_view>

namespace vexa::load {

/// Returns true if the environment has `VEXA_LOAD=long`, which requests the full load. Without it the programs take
/// seconds.
inline bool isLong() {
    const char* const load = std::getenv("VEXA_LOAD");
    return load != nullptr && std::string_view(load) == "long";
}

/// Returns the amount of work: \p whole if the full load is requested, \p quick otherwise.
inline long amount(long quick, long whole) { return isLong() ? whole : quick; }

}  // namespace vexa::load
