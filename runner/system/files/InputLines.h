#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "system/Descriptor.h"

namespace vexa::runner {

/// Reads an input line by line. Holds little more than one line, so the input may be larger than memory.
class InputLines {
public:
    /// Opens the input that readInput() would read.
    /// \throws std::system_error, as the other operations do.
    explicit InputLines(const std::string& path);

    /// Sets \p line to the next line, without its line feed; it is valid until the next call.
    /// \return false at the end of the input.
    bool next(std::string_view& line);
    /// Returns true if no byte is left.
    bool isAtEnd();

private:
    bool readMore();

    Descriptor m_file;
    std::string m_text;    // what was read; lines that were returned are removed before the next read
    std::size_t m_at = 0;  // the start of the next line
};

}  // namespace vexa::runner
