#include "system/files/LiveLines.h"

#include <algorithm>

#include "system/files/MappedTail.h"

namespace vexa::runner {

// A zero byte ends the text if it is near enough to the end of the file.
bool LiveLines::next(std::string_view& line) {
    if (m_isAtEnd || !m_input.next(line)) return false;
    if (line.find('\0') == std::string_view::npos) return true;
    const std::size_t size = line.size();
    m_end = line;
    if (m_input.hasLineFeed()) m_end += '\n';
    m_end += m_input.peek(MappedTail::kMost);
    const std::size_t length = textLengthOf(m_end);
    m_isAtEnd = length < size;
    line = std::string_view(m_end).substr(0, std::min(length, size));
    return !m_isAtEnd || !line.empty();
}

char LiveLines::first() {
    const std::string_view next = m_isAtEnd ? std::string_view() : m_input.peek(1);
    return next.empty() ? '\0' : next.front();
}

std::string LiveLines::rest() {
    std::string text = m_isAtEnd ? std::string() : m_input.rest();
    text.resize(textLengthOf(text));
    return text;
}

}  // namespace vexa::runner
