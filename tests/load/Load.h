#pragma once

#include <cstdlib>
#include <string_view>

namespace vexa::load {

/// Whether the whole load is asked for, by the environment: `VEXA_LOAD=long`. Without, the programs take seconds.
inline bool isLong() {
    const char* const load = std::getenv("VEXA_LOAD");
    return load != nullptr && std::string_view(load) == "long";
}

/// How much of something there is to do: \p quick, or \p whole when the whole load is asked for.
inline long amount(long quick, long whole) { return isLong() ? whole : quick; }

}  // namespace vexa::load
