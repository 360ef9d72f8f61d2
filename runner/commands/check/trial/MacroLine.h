#pragma once

#include <string_view>

namespace vexa::runner {

/// Whether \p text is read back from a macro file as it is.
inline bool fitsMacroLine(std::string_view text) {
    return !text.empty() && text.front() != ' ' && text.front() != '\t' &&
           text.find_first_of(std::string_view("\n\r\0", 3)) == std::string_view::npos;
}

}  // namespace vexa::runner
