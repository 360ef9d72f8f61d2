#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexa::runner {

/// Cuts a text that is too long for a message and appends three dots. Messages quote files, and a damaged file may be
/// one long word. No UTF-8 character is cut in half.
inline std::string shortText(std::string_view text) {
    constexpr std::size_t kMost = 200;
    if (text.size() <= kMost) return std::string(text);
    const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    std::size_t end = kMost;
    while (end > kMost - 4 && continues(text[end])) --end;
    return std::string(text.substr(0, end)) + "...";
}

}  // namespace vexa::runner
