#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vexa/toolbox/Set.h"

namespace vexa::tests {

// Uses only the operations that the Set of every class library has.

inline toolbox::Set setOf(const std::string& text) {
    toolbox::Set set;
    set.assign(text);
    return set;
}

/// Returns a text with these members that differs from the text that toString() returns.
inline std::string setText(const std::vector<uint16_t>& members) {
    std::string text = "[";
    for (const uint16_t member : members) {
        if (text.size() > 1) text += ',';
        text += std::to_string(member);
    }
    return text + ']';
}

}  // namespace vexa::tests
