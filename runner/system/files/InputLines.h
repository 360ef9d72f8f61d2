#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "system/Descriptor.h"

namespace vexa::runner {

/// Reads the lines of a file or stream one after the other. So memory holds one line, however long the file is.
///
///     InputLines lines("results.jsonl");
///     for (std::string line; lines.next(line);) use(line);
///
/// Errors: std::system_error from each function, if the input cannot be read.
class InputLines {
public:
    /// Opens an input as readInput() does; `-` is the standard input.
    explicit InputLines(const std::string& path);

    /// Reads the next line into \p line, without its line feed.
    /// \return false at the end.
    bool next(std::string& line);
    /// Returns true if the line that next() read last has a line feed. Only the last line of a file may lack it.
    bool hasLineFeed() const { return m_hasLineFeed; }
    /// Returns the next \p size bytes without taking them; fewer at the end of the input.
    std::string_view peek(std::size_t size);
    /// Reads everything that is left.
    std::string rest();

private:
    std::string_view buffered() const { return std::string_view(m_buffer).substr(m_begin); }
    bool fetch();

    Descriptor m_descriptor;
    std::string m_buffer;
    std::size_t m_begin = 0;  // where the text that was not taken yet starts
    bool m_hasLineFeed = true;
};

}  // namespace vexa::runner
