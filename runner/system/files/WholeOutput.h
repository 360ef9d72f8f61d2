#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "system/files/AtomicFile.h"
#include "system/files/LiveFile.h"

namespace vexa::runner {

/// An output that is written as a whole: a file is replaced, and a stream gets all of it at once. `-` is the standard
/// output, which this has alone from its construction on, as openOutput() says.
/// Errors: OutputError, from construction and replace().
class WholeOutput {
public:
    /// Opens a stream; of a file it makes sure that it may be written.
    explicit WholeOutput(const std::string& path);

    /// As it was named.
    const std::string& path() const { return m_path; }
    /// Writes \p text. To be called once.
    void replace(std::string_view text);

private:
    std::string m_path;
    std::optional<AtomicFile> m_file;
    std::optional<LiveFile> m_stream;  // instead of the file
};

}  // namespace vexa::runner
