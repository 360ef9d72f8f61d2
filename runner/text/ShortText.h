#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vexa::runner {

/// The beginning of \p text, and three dots, where it is too long for a message: files of others are quoted there, and
/// a word of theirs may be all of the file. No UTF-8 character is cut apart.
inline std::string shortText(std::string_view text) {
    constexpr std::size_t kMost = 200;
    if (text.size() <= kMost) return std::string(text);
    const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; };
    std::size_t end = kMost;
    while (end > kMost - 4 && continues(text[end])) --end;
    return std::string(text.substr(0, end)) + "...";
}

}  // namespace vexa::runner
