#pragma once

#include <string>
#include <string_view>

namespace vexa::runner {

/// A file that is written at once: appended text is in the file even if the process dies after that.
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
    /// Opens \p path as openOutput() does.
    explicit LiveFile(const std::string& path);
    /// Takes ownership of \p descriptor. Messages call it \p name.
    LiveFile(const std::string& name, int descriptor) : m_path(name), m_descriptor(descriptor) {}
    LiveFile(const LiveFile&) = delete;
    LiveFile& operator=(const LiveFile&) = delete;
    ~LiveFile();

    void append(std::string_view text);
    /// Writes nothing more; close() throws \p why.
    void giveUp(const std::string& why);
    /// Call it once, and append nothing after it.
    void close();

private:
    std::string m_path;
    std::string m_problem;  // empty if there is none
    int m_descriptor;
};

}  // namespace vexa::runner
