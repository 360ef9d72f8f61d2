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
/// The text goes to a file without a name in the same folder, which gets its name when it is complete. Where the file
/// system has no such files, a temporary name is used while replace() runs. So a program that ends in between leaves
/// nothing behind. A replaced file keeps its permissions. A symbolic link stays, and the file it points to is replaced.
/// Errors: OutputError; the old file, if there is one, is as it was.
class AtomicFile {
public:
    /// Checks that the file can be written. It changes nothing.
    explicit AtomicFile(const std::string& path);

    /// The file, as it was named.
    const std::string& path() const { return m_path; }
    /// Makes \p text the content of the file. No signal interrupts it.
    void replace(std::string_view text) const;

private:
    std::string m_path;
    std::string m_target;
};

}  // namespace vexa::runner
