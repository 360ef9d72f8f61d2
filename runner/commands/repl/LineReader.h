#pragma once

#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// Reads the lines that the user types. In a terminal the user can edit the line, bring back earlier lines, also of
/// earlier sessions, and complete the first word and then file names with the tab key. Ctrl-C discards the line.
/// Without readline, or if the input is no terminal, lines are only read.
class LineReader : NonCopyable {
public:
    /// \param words the first words to complete
    explicit LineReader(std::vector<std::string> words);
    /// Saves the lines for the next session.
    ~LineReader();

    /// The next line without its end; nothing at the end of the input.
    std::optional<std::string> next() const;

private:
    static std::optional<std::string> plainLine() {
        std::string line;
        if (!std::getline(std::cin, line)) return std::nullopt;
        return line;
    }

    bool m_isEditing;
};

}  // namespace vexa::runner
