#pragma once

#include <string>
#include <string_view>

namespace vexa::runner {

/// A file without a name, in memory, so that no folder for temporary files is needed. Processes that are forked while
/// it lives share it.
class MemoryFile {
public:
    /// \throws std::system_error
    MemoryFile();
    /// With \p text in it.
    /// \throws std::system_error
    explicit MemoryFile(std::string_view text);
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();

    int descriptor() const { return m_descriptor; }
    /// Where this process can open it, as long as this lives.
    std::string path() const;
    /// All that is in it.
    /// \throws std::system_error
    std::string text() const;
    /// Empties it. What is written next begins it anew.
    /// \throws std::system_error
    void clear() const;

private:
    int m_descriptor;
};

}  // namespace vexa::runner
