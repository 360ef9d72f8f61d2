#pragma once

#include <string>
#include <string_view>

#include "text/Printable.h"

namespace vexa::runner {

/// Quotes \p word for a shell, if it needs quotes. A word that cannot be printed on one line is escaped between
/// `$'` and `'`, which bash, zsh and ksh understand.
inline std::string shellWord(const std::string& word) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_./:=@%+,-";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
    const bool isPrintable = printableLine(word) == word;
    std::string text;
    for (const char c : word) {
        if (c == '\'') {
            text += isPrintable ? "'\\''" : "\\'";
        } else {
            text += c == '\\' && !isPrintable ? "\\\\" : std::string(1, c);
        }
    }
    return (isPrintable ? "'" : "$'") + printableLine(text) + '\'';
}

}  // namespace vexa::runner
