#pragma once

#include <string_view>

namespace vexa::runner {

/// Whether a macro file can hold a command with this text.
inline bool fitsMacroLine(std::string_view text) {
    return !text.empty() && text.front() != ' ' && text.front() != '\t' &&
           text.find_first_of(std::string_view("\n\r\0", 3)) == std::string_view::npos;
}

}  // namespace vexa::runner
