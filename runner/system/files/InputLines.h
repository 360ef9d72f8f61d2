#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "system/Descriptor.h"

namespace vexa::runner {

/// Reads the lines of a file or stream one after the other. Holds little more than one line, so the input may be larger
/// than memory.
///
///     InputLines lines("results.jsonl");
///     for (std::string_view line; lines.next(line);) use(line);
///
/// Errors: std::system_error from each function, if the input cannot be read.
class InputLines {
public:
    /// Opens the input that readInput() would read.
    explicit InputLines(const std::string& path);
    /// Returns the lines of a text in memory.
    static InputLines ofText(std::string text);

    /// Sets \p line to the next line, without its line feed. It is valid until the next call of a function.
    /// \return false at the end of the input.
    bool next(std::string_view& line);
    /// Returns true if the line that next() read last has a line feed. Only the last line of a file may lack it.
    bool hasLineFeed() const { return m_hasLineFeed; }
    /// Returns true if no byte is left.
    bool isAtEnd() { return peek(1).empty(); }
    /// Returns the next \p size bytes without taking them; fewer at the end of the input.
    std::string_view peek(std::size_t size);
    /// Reads everything that is left.
    std::string rest();

private:
    InputLines() = default;

    std::string_view buffered() const { return std::string_view(m_text).substr(m_at); }
    bool readMore();

    Descriptor m_file;          // none for a text in memory
    std::string m_text;         // what was read; lines that were returned are removed before the next read
    std::size_t m_at = 0;       // the start of the next line
    bool m_hasLineFeed = true;  // whether the last line had one
};

}  // namespace vexa::runner
