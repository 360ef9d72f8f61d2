#include "system/files/InputLines.h"

#include <array>
#include <cerrno>

#include "system/LastError.h"
#include "system/files/WholeFile.h"

namespace vexa::runner {

InputLines::InputLines(const std::string& path) : m_descriptor(openInput(path)) {}

bool InputLines::next(std::string& line) {
    std::size_t searched = 0;
    for (;;) {
        const std::string_view text = buffered();
        const std::size_t end = text.find('\n', searched);
        m_hasLineFeed = end != std::string_view::npos;
        if (m_hasLineFeed) {
            line.assign(text.substr(0, end));
            m_begin += end + 1;
            return true;
        }
        searched = text.size();
        if (fetch()) continue;
        line = rest();
        return !line.empty();
    }
}

std::string_view InputLines::peek(std::size_t size) {
    while (buffered().size() < size && fetch()) {}
    return buffered().substr(0, size);
}

std::string InputLines::rest() {
    while (fetch()) {}
    std::string text(buffered());
    m_begin = m_buffer.size();
    return text;
}

// Appends more of the input to the buffer. Returns false at the end.
bool InputLines::fetch() {
    m_buffer.erase(0, m_begin);
    m_begin = 0;
    std::array<char, 65536> chunk;
    ssize_t count = 0;
    do {
        count = read(m_descriptor.get(), chunk.data(), chunk.size());
    } while (count < 0 && errno == EINTR);
    if (count < 0) throwLastError();
    m_buffer.append(chunk.data(), static_cast<std::size_t>(count));
    return count > 0;
}

}  // namespace vexa::runner
