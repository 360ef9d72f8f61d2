#pragma once

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace vexa::runner {

/// Appends \p line to \p lines, which do not end with a line feed. An empty line is not added.
inline void addLine(std::string& lines, const std::string& line) {
    if (!line.empty()) lines += (lines.empty() ? "" : "\n") + line;
}

/// Returns \p text on one line: each line feed becomes a blank.
inline std::string joinedLines(std::string_view text) {
    std::string line(text);
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line;
}

/// Returns the lines of \p text, without their line feeds.
inline std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

}  // namespace vexa::runner
