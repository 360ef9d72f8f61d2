#pragma once

#include <string>
#include <string_view>

#include "system/Descriptor.h"

namespace vexa::runner {

/// A file without a name, in memory, so that no folder for temporary files is needed. Child processes share it.
/// Errors: std::system_error, from each function.
class MemoryFile {
public:
    /// Makes a file that contains \p text.
    explicit MemoryFile(std::string_view text = "");

    int descriptor() const { return m_descriptor.get(); }
    /// A path by which this process can open it, as long as this object lives.
    std::string path() const;
    /// The content of the file.
    std::string text() const;
    /// Empties the file. The next write is at its start.
    void clear() const;

private:
    Descriptor m_descriptor;
};

}  // namespace vexa::runner
