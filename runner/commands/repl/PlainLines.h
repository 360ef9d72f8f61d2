#pragma once

#include <iostream>
#include <optional>
#include <string>

namespace vexa::runner {

/// The next line of the standard input.
inline std::optional<std::string> plainLine() {
    std::string line;
    if (!std::getline(std::cin, line)) return std::nullopt;
    return line;
}

}  // namespace vexa::runner
