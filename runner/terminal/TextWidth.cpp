#include "terminal/TextWidth.h"

#include <clocale>
#include <cstdint>
#include <cwchar>

#include <locale.h>

#include "system/NonCopyable.h"
#include "text/Printable.h"

namespace vexa::runner {
namespace {

constexpr std::string_view kEllipsis = "…";
constexpr std::size_t kEllipsisWidth = 1;

// Sets a UTF-8 locale for this thread only. Add-ons rely on the locale of the process.
class Utf8Locale : NonCopyable {
public:
    Utf8Locale() : m_utf8(newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {
        if (m_utf8 != nullptr) m_before = uselocale(m_utf8);
    }
    ~Utf8Locale() {
        if (m_utf8 == nullptr) return;
        uselocale(m_before);
        freelocale(m_utf8);
    }

private:
    locale_t m_utf8;
    locale_t m_before = nullptr;
};

struct Character {
    std::size_t bytes;
    bool isPrintable;
    std::size_t width;
};

// The first character of a text that is not empty.
Character firstOf(std::string_view text) {
    wchar_t character = 0;
    std::mbstate_t state{};
    const std::size_t bytes = std::mbrtowc(&character, text.data(), text.size(), &state);
    if (bytes == 0 || bytes > text.size()) return {1, false, 1};  // a NUL, or no character
    const int width = wcwidth(character);
    if (width < 0) return {bytes, false, 1};
    return {bytes, printableLength(text) == bytes, static_cast<std::size_t>(width)};
}

// Calls \p visit with the bytes of each character, until it returns false.
template <class Visit>
void forEachCharacter(std::string_view text, const Visit& visit) {
    const Utf8Locale utf8;
    while (!text.empty()) {
        const Character character = firstOf(text);
        if (!visit(text.substr(0, character.bytes), character)) return;
        text.remove_prefix(character.bytes);
    }
}

bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80U; }

}  // namespace

std::size_t widthOf(std::string_view text) {
    std::size_t width = 0;
    forEachCharacter(text, [&](std::string_view, const Character& character) {
        width += character.width;
        return true;
    });
    return width;
}

std::string cutToWidth(std::string_view text, std::size_t columns) {
    if (widthOf(text) <= columns) return std::string(text);
    if (columns < kEllipsisWidth) return "";
    std::string kept;
    std::size_t width = 0;
    forEachCharacter(text, [&](std::string_view bytes, const Character& character) {
        width += character.width;
        const bool fits = width + kEllipsisWidth <= columns;
        if (fits) kept += bytes;
        return fits;
    });
    return kept.append(kEllipsis);
}

std::string asOneLine(std::string_view text) {
    std::string line;
    forEachCharacter(text, [&](std::string_view bytes, const Character& character) {
        line += character.isPrintable ? bytes : isAscii(bytes.front()) ? " " : "?";
        return true;
    });
    return line;
}

}  // namespace vexa::runner
