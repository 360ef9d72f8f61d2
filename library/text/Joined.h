#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace vexa::vexautilutil {

// Returns the parts as one text. It allocates memory once at most, and is faster than appending the parts in turn.
template <class... Parts>
std::string joined(const Parts&... parts) {
    std::string text((std::string_view(parts).size() + ...), '\0');
    char* at = text.data();
    const auto put = [&at](std::string_view part) { at = std::copy(part.begin(), part.end(), at); };
    (put(parts), ...);
    return text;
}

}  // namespace vexa::vexautilutil
