#pragma once

#include <cstdio>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "language/Descriptions.h"
#include "system/LastError.h"
#include "system/NonCopyable.h"

namespace vexa::runner {

/// Reads the lines that the user types. In a terminal the user can edit the line, recall lines of this and of earlier
/// sessions, and complete words with the tab key: the first word, the commands and options of described add-ons, and
/// file names. Ctrl-C discards the line. Without readline, or if the input is not a terminal, the class only reads
/// lines.
class LineReader : NonCopyable {
public:
    LineReader();
    /// Saves the lines for the next session.
    ~LineReader();

    /// Returns the next line without its line end; nothing at the end of the input.
    /// \throws std::system_error if the input cannot be read.
    /// \param words        what completes the first word, and the words after `:help`
    /// \param descriptions what completes the words after the id of an add-on
    std::optional<std::string> next(std::vector<std::string> words, const Descriptions& descriptions) const;

private:
    static std::optional<std::string> plainLine() {
        std::string line;
        if (std::getline(std::cin, line)) return line;
        if (std::ferror(stdin) != 0) throwLastError("the standard input cannot be read");
        return std::nullopt;
    }

    bool m_isEditing;
};

}  // namespace vexa::runner
