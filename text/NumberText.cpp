#include "text/NumberText.h"

#include <charconv>
#include <locale>
#include <sstream>

namespace vexa::vexautilutil {
namespace {

constexpr int kSignificantDigits = 6;
// Enough for the sign and digits of any 64-bit integer, and for any double of six significant digits.
constexpr std::size_t kLongestNumber = 24;

bool isGlobalLocaleClassic() { return std::locale() == std::locale::classic(); }

template <class Number>
void appendByStream(std::string& text, Number value) {
    std::ostringstream stream;
    stream.exceptions(std::ios::badbit);  // else the stream would swallow an allocation failure
    stream << value;
    text += stream.str();
}

template <class Number, class... Format>
void appendByDigits(std::string& text, Number value, Format... format) {
    char digits[kLongestNumber];
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value, format...);
    text.append(digits, end.ptr);
}

}  // namespace

void appendNumber(std::string& text, int64_t value) {
    if (isGlobalLocaleClassic()) {
        appendByDigits(text, value);
    } else {
        appendByStream(text, value);
    }
}

void appendNumber(std::string& text, double value) {
    if (isGlobalLocaleClassic()) {
        appendByDigits(text, value, std::chars_format::general, kSignificantDigits);
    } else {
        appendByStream(text, value);
    }
}

}  // namespace vexa::vexautilutil
