#include "system/files/InputLines.h"

#include <cerrno>
#include <utility>

#include "system/LastError.h"
#include "system/files/WholeFile.h"

namespace vexa::runner {

InputLines::InputLines(const std::string& path) : m_file(openInput(path)) {}

InputLines InputLines::ofText(std::string text) {
    InputLines lines;
    lines.m_text = std::move(text);
    return lines;
}

bool InputLines::next(std::string_view& line) {
    std::size_t searched = 0;
    for (;;) {
        const std::size_t end = m_text.find('\n', m_at + searched);
        m_hasLineFeed = end != std::string::npos;
        if (m_hasLineFeed) {
            line = std::string_view(m_text).substr(m_at, end - m_at);
            m_at = end + 1;
            return true;
        }
        searched = m_text.size() - m_at;
        if (!readMore()) break;
    }
    line = buffered();
    m_at = m_text.size();
    return !line.empty();
}

std::string_view InputLines::peek(std::size_t size) {
    while (buffered().size() < size && readMore()) {}
    return buffered().substr(0, size);
}

std::string InputLines::rest() {
    while (readMore()) {}
    std::string text(buffered());
    m_at = m_text.size();
    return text;
}

// Appends more of the input to the text. Returns false at the end.
bool InputLines::readMore() {
    if (!m_file.isOpen()) return false;
    constexpr std::size_t kChunk = 1U << 18U;
    m_text.erase(0, m_at);
    m_at = 0;
    const std::size_t size = m_text.size();
    m_text.resize(size + kChunk);
    ssize_t count = -1;
    do {
        count = read(m_file.get(), &m_text[size], kChunk);
    } while (count < 0 && errno == EINTR);
    m_text.resize(size + (count > 0 ? static_cast<std::size_t>(count) : 0));
    if (count < 0) throwLastError();
    return count > 0;
}

}  // namespace vexa::runner
