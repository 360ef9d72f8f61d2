#pragma once

#include <string>

namespace vexa::fuzz {

/// Whether a set in \p text may have a stepped range of many members, which takes a while and shows nothing new. Behind
/// a number only the step of such a range has a colon.
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
