#include "text/Printable.h"

#include <algorithm>

namespace vexa::runner {
namespace {

bool isIn(unsigned char byte, unsigned first, unsigned last) { return byte >= first && byte <= last; }

bool isPlain(char c) { return c >= ' ' && c <= '~'; }

// Returns true for U+202A to U+202E and U+2066 to U+2069. With them, a text can look like another one.
bool turnsDirection(unsigned char first, unsigned char second, unsigned char third) {
    if (first != 0xE2) return false;
    return (second == 0x80 && isIn(third, 0xAA, 0xAE)) || (second == 0x81 && isIn(third, 0xA6, 0xA9));
}

void appendByte(std::string& shown, unsigned char byte) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    shown += {'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
}

// `layOut` appends a line feed or a tab.
template <class LayOut>
std::string shownBy(std::string_view text, const LayOut& layOut) {
    std::string shown;
    shown.reserve(text.size());
    for (;;) {
        // Fast path: nearly all text is ASCII.
        const auto plainEnd = std::find_if_not(text.begin(), text.end(), isPlain);
        const auto plain = static_cast<std::size_t>(plainEnd - text.begin());
        shown += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) return shown;
        const std::size_t length = printableLength(text);
        if (length != 0) {
            shown += text.substr(0, length);
        } else if (text.front() == '\n' || text.front() == '\t') {
            layOut(shown, text.front());
        } else {
            appendByte(shown, static_cast<unsigned char>(text.front()));
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
}

}  // namespace

std::string printable(std::string_view text) {
    return shownBy(text, [](std::string& shown, char c) { shown += c; });
}

std::string printableLine(std::string_view text) {
    return shownBy(text, [](std::string& shown, char c) { shown += c == '\n' ? "\\n" : "\\t"; });
}

// Also refuses overlong forms, surrogates, U+FFFE and U+FFFF, which XML does not allow, and values after the last
// character.
std::size_t printableLength(std::string_view text) {
    const auto byte = [&](std::size_t i) -> unsigned char {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : '\0';
    };
    const auto continues = [&](std::size_t i) { return isIn(byte(i), 0x80, 0xBF); };
    const unsigned char first = byte(0);
    const unsigned char second = byte(1);
    if (!text.empty() && isPlain(text.front())) return 1;
    if (isIn(first, 0xC2, 0xDF)) return continues(1) && !(first == 0xC2 && second < 0xA0) ? 2 : 0;
    if (isIn(first, 0xE0, 0xEF)) {
        const bool isRefused = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                               (first == 0xEF && second == 0xBF && byte(2) >= 0xBE) ||
                               turnsDirection(first, second, byte(2));
        return continues(1) && continues(2) && !isRefused ? 3 : 0;
    }
    const bool isRefused = (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return isIn(first, 0xF0, 0xF4) && continues(1) && continues(2) && continues(3) && !isRefused ? 4 : 0;
}

}  // namespace vexa::runner
