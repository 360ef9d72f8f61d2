#pragma once

#include <string>
#include <string_view>

#include "system/Descriptor.h"

namespace vexa::runner {

/// The treatment of the text that a file has already.
enum class OldText_e { Removed, Kept };

/// A file that is written immediately: appended text is in the file even if the process dies after that.
///
///     LiveFile file("run.trace");   // empties the file; throws if that fails
///     file.append("started\n");
///     file.close();                 // throws if a write failed
///
/// Errors:  OutputError from construction and close(). After a failed write nothing more is written, so that the file
///          has no gap.
/// Threads: one at a time.
class LiveFile {
public:
    /// Opens \p path for writing. Creates a missing file. If the file exists, removes its text or appends to it. A
    /// stream is only opened. `-` is the standard output, which then belongs to this object alone: the output of the
    /// program and of its add-ons goes to the standard error output. Refuses a pipe that no process reads, and a closed
    /// standard output.
    explicit LiveFile(const std::string& path, OldText_e oldText = OldText_e::Removed);

    void append(std::string_view text);
    /// Writes nothing more; close() throws \p why.
    void giveUp(const std::string& why);
    /// Call it once, and append nothing after it.
    void close();

private:
    std::string m_path;
    std::string m_problem;  // empty if there is none
    Descriptor m_descriptor;
};

}  // namespace vexa::runner
