#pragma once

#include <charconv>
#include <cstddef>
#include <optional>
#include <string_view>
#include <system_error>

namespace vexa::runner {

/// Returns the number that \p text is, in decimal digits without a sign; nothing if it is anything else.
inline std::optional<std::size_t> wholeNumberIn(std::string_view text) {
    std::size_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end) return std::nullopt;
    return number;
}

}  // namespace vexa::runner
