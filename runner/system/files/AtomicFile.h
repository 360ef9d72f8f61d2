#pragma once

#include <string>
#include <string_view>

#include "system/files/OutputTarget.h"

namespace vexa::runner {

/// A file that is replaced as a whole, or not at all.
///
///     AtomicFile file("recorded.macro");   // fails now if the place cannot be written
///     ...                                  // the old file is still there
///     file.replace(text);                  // now the new one is
///
/// replace() writes the text to a file without a name in the same folder, and names the file when it is complete. So a
/// program that is killed leaves nothing behind. On a file system without such files, replace() uses a temporary name.
/// The file keeps its permissions. Of a symbolic link, the file that it points to is replaced.
/// Errors: OutputError; the old file, if any, is unchanged.
class AtomicFile {
public:
    /// Checks that the file can be written. Changes nothing.
    explicit AtomicFile(const std::string& path);

    /// The path as given.
    const std::string& path() const { return m_path; }
    /// Replaces the content of the file by \p text. Signals wait until it returns.
    void replace(std::string_view text) const;

private:
    std::string m_path;
    std::string m_target;
};

}  // namespace vexa::runner
