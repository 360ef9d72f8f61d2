#pragma once

#include <charconv>
#include <cstddef>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>

namespace vexa::runner {

/// A text to which many short pieces are appended. Faster than a std::string, because the pieces are copied inline, and
/// clear() keeps the memory.
class TextBuffer {
public:
    void append(std::string_view text) {
        std::memcpy(room(text.size()), text.data(), text.size());
        m_size += text.size();
    }
    void append(char c) {
        *room(1) = c;
        ++m_size;
    }
    /// Appends an integer in decimal.
    template <class Integer>
    void appendNumber(Integer number) {
        constexpr std::size_t kMost = std::numeric_limits<Integer>::digits10 + 2;
        char* const begin = room(kMost);
        m_size += static_cast<std::size_t>(std::to_chars(begin, begin + kMost, number).ptr - begin);
    }

    std::string_view text() const { return {m_memory.data(), m_size}; }
    void clear() { m_size = 0; }

private:
    char* room(std::size_t size) {
        if (m_memory.size() - m_size < size) m_memory.resize(2 * m_memory.size() + size);
        return m_memory.data() + m_size;
    }

    std::string m_memory;  // all of it is text memory; the text ends at m_size
    std::size_t m_size = 0;
};

}  // namespace vexa::runner
