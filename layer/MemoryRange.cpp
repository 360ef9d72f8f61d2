#include "layer/MemoryRange.h"

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>

namespace vexa::layer {
namespace {

// Reads /proc/self/maps, whose lines start with `BEGIN-END `, a character at a time.
class MapsReader {
public:
    MapsReader() : m_descriptor(static_cast<int>(syscall(SYS_open, "/proc/self/maps", O_RDONLY | O_CLOEXEC))) {}
    MapsReader(const MapsReader&) = delete;
    MapsReader& operator=(const MapsReader&) = delete;
    ~MapsReader() {
        if (m_descriptor >= 0) syscall(SYS_close, m_descriptor);
    }

    /// Reads the next line.
    /// \return false at the end.
    bool next(MemoryRange& range) {
        range.begin = address();
        range.end = address();
        while (m_last != '\n' && m_last != '\0') m_last = character();
        return m_last != '\0';
    }

private:
    // The address up to the next character that is no digit.
    const void* address() {
        std::uintptr_t value = 0;
        for (;;) {
            m_last = character();
            unsigned digit = 0;
            if (std::from_chars(&m_last, &m_last + 1, digit, 16).ptr == &m_last) break;
            value = value * 16 + digit;
        }
        return reinterpret_cast<const void*>(value);
    }

    char character() {
        if (m_at == m_size) {
            const long size = syscall(SYS_read, m_descriptor, m_text.data(), m_text.size());
            m_size = size < 0 ? 0 : static_cast<std::size_t>(size);
            m_at = 0;
        }
        return m_at == m_size ? '\0' : m_text[m_at++];
    }

    int m_descriptor;
    std::array<char, 4096> m_text;
    std::size_t m_size = 0;
    std::size_t m_at = 0;
    char m_last = '\0';
};

}  // namespace

MemoryRange rangeAround(const void* address) {
    MapsReader maps;
    MemoryRange range;
    while (maps.next(range)) {
        if (range.has(address)) return range;
    }
    return {};
}

}  // namespace vexa::layer
