#pragma once

#include <string>

namespace vexa::fuzz {

/// Returns true if a set in \p text may have a stepped range of many members. Such a set takes long and tests nothing
/// new. Only a stepped range has a colon after a number.
inline bool mayHaveManyMembers(const std::string& text) {
    constexpr int kMostDigits = 3;
    int digits = 0;
    for (const char c : text) {
        if (c == ':' && digits > kMostDigits) return true;
        if (c == ' ' || c == '\t') continue;
        digits = c >= '0' && c <= '9' ? digits + 1 : 0;
    }
    return false;
}

}  // namespace vexa::fuzz
