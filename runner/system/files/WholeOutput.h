#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "system/files/LiveFile.h"
#include "system/files/OutputTarget.h"

namespace vexa::runner {

/// An output that is written as a whole: a file is replaced completely or not at all, and a stream gets all of the text
/// at once. `-` is the standard output, which then belongs to this object alone; see LiveFile.
///
///     WholeOutput file("recorded.macro");   // fails now if the place cannot be written
///     ...                                   // the old file is still there
///     file.replace(text);                   // now the new one is
///
/// replace() writes the text to a file without a name in the same folder, and names the file when it is complete. So a
/// killed program leaves no temporary file. On a file system without such files, replace() uses a temporary name. The
/// file keeps its permissions. If the path is a symbolic link, its target is replaced. Errors: OutputError, from
/// construction and replace(); the old file, if any, is unchanged.
class WholeOutput {
public:
    /// Opens a stream, or checks that a file can be written.
    explicit WholeOutput(const std::string& path);
    WholeOutput(WholeOutput&& other) noexcept;
    WholeOutput& operator=(WholeOutput&& other) noexcept;
    ~WholeOutput();

    /// Returns the path, as passed to the constructor.
    const std::string& path() const { return m_path; }
    /// Writes \p text. Call it once. While it replaces a file, signals wait.
    void replace(std::string_view text);

    /// \name A text in parts
    /// append() writes the next part, and finish() then replaces the file. Without finish() the old file stays.
    /// @{
    void append(std::string_view part);
    void finish();
    /// @}

private:
    class Draft;

    Draft& draft();

    std::string m_path;
    std::string m_target;              // the file to replace
    std::optional<LiveFile> m_stream;  // the stream, if the output is not a file
    std::unique_ptr<Draft> m_draft;    // the new file, while it is written
};

}  // namespace vexa::runner
