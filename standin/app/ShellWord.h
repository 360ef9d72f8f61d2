#pragma once

#include <string>
#include <string_view>

namespace vexa::runner {

/// \p word as a shell takes it: between quotes where it has to be.
inline std::string shellWord(const std::string& word) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_./:=@%+,-";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
    std::string text = "'";
    for (const char c : word) text += c == '\'' ? "'\\''" : std::string(1, c);
    return text + '\'';
}

}  // namespace vexa::runner
