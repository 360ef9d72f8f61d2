#pragma once

#include <string>
#include <string_view>

namespace vexa::runner {

/// Returns the texts of a list with \p between as the separator: "a, b, c".
template <class Texts>
std::string joined(const Texts& texts, std::string_view between) {
    std::string all;
    bool isFirst = true;
    for (const auto& text : texts) {
        if (!isFirst) all += between;
        all += text;
        isFirst = false;
    }
    return all;
}

}  // namespace vexa::runner
