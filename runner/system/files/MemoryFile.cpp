#include "system/files/MemoryFile.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "system/LastError.h"
#include "system/files/Descriptor.h"

namespace vexa::runner {
// Opened for appending: after the file was emptied, writers continue at its new end.
MemoryFile::MemoryFile() : m_descriptor(memfd_create("vexa", MFD_CLOEXEC)) {
    if (m_descriptor < 0 || fcntl(m_descriptor, F_SETFL, O_APPEND) != 0) throwLastError();
}

MemoryFile::MemoryFile(std::string_view text) : MemoryFile() {
    if (!writeAll(m_descriptor, text)) throwLastError();
}

MemoryFile::~MemoryFile() { close(m_descriptor); }

std::string MemoryFile::path() const { return "/dev/fd/" + std::to_string(m_descriptor); }

std::string MemoryFile::text() const {
    std::string text;
    std::array<char, 65536> chunk;
    for (;;) {
        const ssize_t count = pread(m_descriptor, chunk.data(), chunk.size(), static_cast<off_t>(text.size()));
        if (count == 0) return text;
        if (count < 0 && errno != EINTR) throwLastError();
        if (count > 0) text.append(chunk.data(), static_cast<std::size_t>(count));
    }
}

void MemoryFile::clear() const {
    if (ftruncate(m_descriptor, 0) != 0) throwLastError();
}

}  // namespace vexa::runner
