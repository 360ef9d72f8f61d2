#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vexa/toolbox/Set.h"

namespace vexa::tests {

// By the operations that every set has, whoever made the class libraries.

inline toolbox::Set setOf(const std::string& text) {
    toolbox::Set set;
    set.assign(text);
    return set;
}

/// A set's text with these members, which a set writes in another way when it renders itself.
inline std::string setText(const std::vector<uint16_t>& members) {
    std::string text = "[";
    for (const uint16_t member : members) {
        if (text.size() > 1) text += ',';
        text += std::to_string(member);
    }
    return text + ']';
}

}  // namespace vexa::tests
