#pragma once

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace vexa::load {

/// Returns true if the environment variable VEXA_LOAD has the value \p load. `VEXA_LOAD=long` requests the full load,
/// and `VEXA_LOAD=scaled` about a hundredth of it, which takes minutes. Without it the programs take seconds.
inline bool isLoad(std::string_view load) {
    const char* const requested = std::getenv("VEXA_LOAD");
    return requested != nullptr && requested == load;
}

/// Returns true if the full load is requested.
inline bool isLong() { return isLoad("long"); }

/// Returns the amount of work: \p whole if the full load is requested, a hundredth of it if the scaled load is, and
/// otherwise \p quick.
inline long amount(long quick, long whole) {
    if (isLong()) return whole;
    return isLoad("scaled") ? std::max(quick, whole / 100) : quick;
}

}  // namespace vexa::load
