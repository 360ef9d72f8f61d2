#pragma once

#include <string>
#include <string_view>

namespace vexa::runner {

/// The texts of a list, with \p between after each but the last one: "a, b, c".
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
