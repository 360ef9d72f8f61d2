#pragma once

#include <cstddef>
#include <string>

namespace vexa::runner {

/// Returns how many there are of what \p noun names, for example "1 call" or "2 calls".
inline std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

}  // namespace vexa::runner
