#pragma once

#include <string>

namespace vexa::runner {

/// Adds \p line to \p lines, which have no line feed at their end; not an empty one.
inline void addLine(std::string& lines, const std::string& line) {
    if (!line.empty()) lines += (lines.empty() ? "" : "\n") + line;
}

}  // namespace vexa::runner
