#pragma once

#include <string>
#include <string_view>

namespace vexa::runner {

/// A file without a name, in memory, so that no folder for temporary files is needed. Child processes share it.
class MemoryFile {
public:
    /// \throws std::system_error
    MemoryFile();
    /// Makes a file that contains \p text.
    /// \throws std::system_error
    explicit MemoryFile(std::string_view text);
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();

    int descriptor() const { return m_descriptor; }
    /// A path by which this process can open it, as long as this object lives.
    std::string path() const;
    /// The content of the file.
    /// \throws std::system_error
    std::string text() const;
    /// Empties the file. The next write is at its start.
    /// \throws std::system_error
    void clear() const;

private:
    int m_descriptor;
};

}  // namespace vexa::runner
