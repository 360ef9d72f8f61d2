#pragma once

#include <fcntl.h>
#include <sys/mman.h>

#include <string>
#include <string_view>

#include "system/Descriptor.h"
#include "system/LastError.h"
#include "system/files/WholeFile.h"

namespace vexa::runner {

/// A file without a name, in memory, so that no folder for temporary files is needed. Child processes share it.
/// Errors: std::system_error, from each function.
class MemoryFile {
public:
    /// Makes a file that contains \p text. After clear(), writers continue at its new end.
    explicit MemoryFile(std::string_view text = "") : m_descriptor(memfd_create("vexa", MFD_CLOEXEC)) {
        const bool isReady = m_descriptor.isOpen() && fcntl(descriptor(), F_SETFL, O_APPEND) == 0;
        if (!isReady || !writeAll(descriptor(), text)) throwLastError();
    }

    int descriptor() const { return m_descriptor.get(); }
    /// Returns a path by which this process can open the file, as long as this object lives.
    std::string path() const { return "/dev/fd/" + std::to_string(descriptor()); }
    std::string text() const { return readWholeFile(path()); }
    void clear() const {
        if (ftruncate(descriptor(), 0) != 0) throwLastError();
    }

private:
    Descriptor m_descriptor;
};

}  // namespace vexa::runner
