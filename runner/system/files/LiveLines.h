#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "system/files/InputLines.h"

namespace vexa::runner {

/// Reads a file that a LiveFile writes, line by line. The process that wrote the file may have been killed: what
/// textLengthOf() does not count as text is not read.
///
/// Errors: std::system_error from each function, if the file cannot be read.
class LiveLines {
public:
    /// Opens the input that readInput() would read.
    explicit LiveLines(const std::string& path) : m_input(path) {}
    /// Reads what is left of \p input.
    explicit LiveLines(InputLines input) : m_input(std::move(input)) {}

    /// Sets \p line to the next line, without its line feed. It is valid until the next call of a function.
    /// \return false at the end of the text.
    bool next(std::string_view& line);
    /// Returns true if no text is left.
    bool isAtEnd() { return m_isAtEnd || m_input.isAtEnd(); }
    /// Returns the next byte without taking it; zero at the end of the text.
    char first();
    /// Reads all text that is left.
    std::string rest();

private:
    InputLines m_input;
    bool m_isAtEnd = false;  // what follows is no text
    std::string m_end;       // the end of the file, if it was looked at
};

}  // namespace vexa::runner
