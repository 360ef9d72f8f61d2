#pragma once

#include <string>

namespace vexa::runner {

/// A file without a name, in memory. Processes that are forked while it lives share it.
class MemoryFile {
public:
    /// \throws std::system_error
    MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile();

    int descriptor() const { return m_descriptor; }
    /// All that is in it.
    /// \throws std::system_error
    std::string text() const;
    /// Empties it. What is written next begins it anew.
    void clear() const;

private:
    int m_descriptor;
};

}  // namespace vexa::runner
