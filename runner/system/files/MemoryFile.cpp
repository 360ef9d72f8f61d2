#include "system/files/MemoryFile.h"

#include <fcntl.h>
#include <sys/mman.h>

#include "system/LastError.h"
#include "system/files/WholeFile.h"

namespace vexa::runner {

// Opened for appending: after the file was emptied, writers continue at its new end.
MemoryFile::MemoryFile(std::string_view text) : m_descriptor(memfd_create("vexa", MFD_CLOEXEC)) {
    const bool isReady = m_descriptor.isOpen() && fcntl(descriptor(), F_SETFL, O_APPEND) == 0;
    if (!isReady || !writeAll(descriptor(), text)) throwLastError();
}

std::string MemoryFile::path() const { return "/dev/fd/" + std::to_string(descriptor()); }

std::string MemoryFile::text() const { return readWholeFile(path()); }

void MemoryFile::clear() const {
    if (ftruncate(descriptor(), 0) != 0) throwLastError();
}

}  // namespace vexa::runner
