#pragma once

#include <string>
#include <string_view>

namespace vexa::runner {

/// A file that is written as things happen: what was appended is there also when the process dies.
///
///     LiveFile file("run.trace");   // empties the file, or fails now
///     file.append("it began\n");
///     file.close();                 // tells whether all of it was written
///
/// Errors:  OutputError from construction and close(). When a write fails what follows is left out, so that the file
///          has no hole in it.
/// Threads: one uses it at a time.
class LiveFile {
public:
    /// Opens \p path as openOutput() does.
    explicit LiveFile(const std::string& path);
    /// Takes over \p descriptor, which is called \p name.
    LiveFile(const std::string& name, int descriptor) : m_path(name), m_descriptor(descriptor) {}
    LiveFile(const LiveFile&) = delete;
    LiveFile& operator=(const LiveFile&) = delete;
    ~LiveFile();

    void append(std::string_view text);
    /// Leaves out what follows, and has close() tell \p why.
    void giveUp(const std::string& why);
    /// To be called once; nothing is appended afterwards.
    void close();

private:
    std::string m_path;
    std::string m_problem;  // empty while all is well
    int m_descriptor;
};

}  // namespace vexa::runner
