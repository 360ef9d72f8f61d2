#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "system/Descriptor.h"
#include "system/files/MappedTail.h"

namespace vexa::runner {

/// How a LiveFile writes to a regular file.
enum class Append_e {
    BySystemCall,  ///< one for each text. The file always has the length of the text
    ByMapping      ///< see MappedTail. If the process is killed, another one must call cutAfterText()
};

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
    /// Opens \p path for writing. A regular file is created or emptied; a stream is only opened. `-` is the standard
    /// output, which then belongs to this object alone: the output of the program and of its add-ons goes to the
    /// standard error output. Refuses a pipe that no process reads, and a closed standard output.
    ///
    /// With Append_e::ByMapping it also refuses a regular file that another process writes in this way. Where the
    /// system cannot map the file, it is written by system calls.
    explicit LiveFile(const std::string& path, Append_e how = Append_e::BySystemCall);
    /// The same, but \p oldText says what happens to the text of a file that exists.
    LiveFile(const std::string& path, OldText_e oldText);

    void append(std::string_view text);
    /// Writes nothing more; close() throws \p why.
    void giveUp(const std::string& why);
    /// Call it once, and append nothing after it.
    void close();

private:
    std::string m_path;
    std::string m_problem;  // empty if there is none
    Descriptor m_descriptor;
    std::unique_ptr<MappedTail> m_tail;  // null if texts are written by system calls
};

}  // namespace vexa::runner
