#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "system/files/AtomicFile.h"
#include "system/files/LiveFile.h"

namespace vexa::runner {

/// An output that is written in one piece: a file is replaced, and a stream gets all of the text at once. `-` is the
/// standard output, which then belongs to this object alone; see openOutput().
/// Errors: OutputError, from construction and replace().
class WholeOutput {
public:
    /// Opens a stream, or checks that a file can be written.
    explicit WholeOutput(const std::string& path);

    /// The path as given.
    const std::string& path() const { return m_path; }
    /// Writes \p text. Call it once.
    void replace(std::string_view text);

private:
    std::string m_path;
    std::optional<AtomicFile> m_file;
    std::optional<LiveFile> m_stream;  // instead of the file
};

}  // namespace vexa::runner
