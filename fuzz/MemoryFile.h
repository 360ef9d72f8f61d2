#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include "Fuzz.h"

namespace vexa::fuzz {

/// A file in memory. This process can open it by its path.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& content) : m_descriptor(memfd_create("text", MFD_CLOEXEC)) {
        require(m_descriptor >= 0, "there is a file in memory");
        const auto written = write(m_descriptor, content.data(), content.size());
        require(written == static_cast<ssize_t>(content.size()), "the file takes the text");
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(m_descriptor); }

    std::string path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

private:
    int m_descriptor;
};

}  // namespace vexa::fuzz
