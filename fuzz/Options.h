#pragma once

#include <memory>
#include <string>

#include "vexautilutil/BooleanMacroOption.h"
#include "vexautilutil/SetMacroOption.h"
#include "vexautilutil/StringMacroOption.h"
#include "vexautilutil/UInt64MacroOption.h"

namespace vexa::fuzz {

/// Reads an option. The first letter of its name decides the type: B Boolean, U integer, Z set, any other string.
inline std::shared_ptr<vexautilutil::MacroOptionInterface> readOption(vexautilutil::MacroTokenIterator& current,
                                                                      const vexautilutil::MacroTokenIterator& end) {
    using namespace vexautilutil;
    const std::string name = current == end ? "" : *current;
    switch (name.empty() ? '\0' : name[0]) {
        case 'B': return std::make_shared<BooleanMacroOption>(current, end, nullptr);
        case 'U': return std::make_shared<UInt64MacroOption>(current, end, nullptr);
        case 'Z': return std::make_shared<SetMacroOption>(current, end, false, nullptr);
        default: return std::make_shared<StringMacroOption>(current, end, nullptr);
    }
}

}  // namespace vexa::fuzz
