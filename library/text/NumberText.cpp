#include "text/NumberText.h"

#include <charconv>
#include <locale>
#include <sstream>

namespace vexa::vexautilutil {
namespace {

constexpr int kSignificantDigits = 6;

// Keeps a reference to the classic locale, because the lookup is a large part of the cost of this function.
bool isGlobalLocaleClassic() {
    static const std::locale& classic = std::locale::classic();
    return std::locale() == classic;
}

template <class Number>
void appendByStream(std::string& text, Number value) {
    std::ostringstream stream;
    stream.exceptions(std::ios::badbit);  // without it, the stream would hide an allocation failure
    stream << value;
    text += stream.str();
}

template <class Number, class... Format>
void appendInGlobalLocale(std::string& text, Number value, Format... format) {
    if (!isGlobalLocaleClassic()) return appendByStream(text, value);
    char digits[kLongestNumber];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value, format...);
    text.append(digits, end.ptr);
}

}  // namespace

void appendNumber(std::string& text, int64_t value) { appendInGlobalLocale(text, value); }

void appendNumber(std::string& text, uint64_t value) { appendInGlobalLocale(text, value); }

void appendNumber(std::string& text, double value) {
    appendInGlobalLocale(text, value, std::chars_format::general, kSignificantDigits);
}

bool readPlainDigits(const std::string& text, uint64_t& value) {
    if (!isGlobalLocaleClassic()) return false;
    const char* const end = text.data() + text.size();
    uint64_t read = 0;
    const std::from_chars_result result = std::from_chars(text.data(), end, read);
    if (result.ec != std::errc() || result.ptr != end) return false;
    value = read;
    return true;
}

}  // namespace vexa::vexautilutil
