#pragma once

#include <string>
#include <string_view>

#include "OutputTarget.h"

namespace vexa::runner {

/// A file that is replaced as a whole, or not at all.
///
///     AtomicFile file("recorded.mcr");   // fails now if the place cannot be written
///     ...                                // the old file is still there
///     file.replace(text);                // now the new one is
///
/// The text goes to a temporary file in the same folder, which takes the place of the old one when it is complete.
/// A replaced file keeps its permissions. A symbolic link stays, and what it points to is replaced.
/// Errors: OutputError; the old file, if there is one, is as it was.
class AtomicFile {
public:
    /// Creates the temporary file. What exists at \p path must be a regular file that may be written.
    explicit AtomicFile(const std::string& path);
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;
    /// Removes the temporary file, if it did not take its place.
    ~AtomicFile();

    /// The file, as it was named.
    const std::string& path() const { return m_path; }
    /// The file itself, symbolic links followed: equal for two ways to name one file.
    const std::string& target() const { return m_target; }
    /// The temporary file, until it takes its place.
    const std::string& temporary() const { return m_temporary; }
    /// Makes \p text the content of the file. To be called once.
    void replace(std::string_view text);

private:
    AtomicFile() = default;
    void createTemporary();

    std::string m_path;
    std::string m_target;
    std::string m_temporary;  // empty while there is none
    int m_descriptor = -1;
};

}  // namespace vexa::runner
