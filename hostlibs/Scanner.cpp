#include "vexa/Scanner.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

namespace vexa {
namespace {

constexpr char kPlus = '+';
constexpr char kMinus = '-';
constexpr char kCloseParen = ')';
constexpr std::string_view kNonZeroDigits = "123456789";
constexpr std::string_view kExponentSigns = "eE";

// Not isspace(), which depends on the locale. The first comparison is enough for nearly every character.
bool isWhiteSpace(char c) { return static_cast<unsigned char>(c) <= ' ' && (c == ' ' || (c >= '\t' && c <= '\r')); }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

std::size_t afterWhiteSpace(const std::string& text, std::size_t at) {
    while (at < text.size() && isWhiteSpace(text[at])) ++at;
    return at;
}

// A scanner keeps the last token found in the place of an integer, because the size of Scanner is part of the binary
// interface. One of these bits of the position then marks a token. No text is long enough to set them.
constexpr std::size_t kTokenMark = std::size_t{1} << 63;
constexpr std::size_t kDelimitedMark = std::size_t{1} << 62;

// The functions below take the last result as `kept`. If it is the one that they look for, they reuse it. Otherwise
// they search, and store the new result in `kept`.

// Returns the first token at or after `at`; empty if there is none.
template <typename Found>
std::string_view findToken(const std::string& text, std::size_t at, Found& kept) {
    if (kept.at != (at | kTokenMark)) {
        const std::size_t begin = afterWhiteSpace(text, at);
        std::size_t end = begin;
        while (end < text.size() && !isWhiteSpace(text[end])) ++end;
        kept = {at | kTokenMark, end, false, static_cast<int64_t>(begin)};
    }
    return {text.data() + kept.value, kept.end - static_cast<std::size_t>(kept.value)};
}

// Returns the characters from `at` to the first of `delimiters`; empty if no delimiter follows.
std::string_view findAnyDelimited(const std::string& text, std::size_t at, const std::string& delimiters) {
    const std::size_t end = text.find_first_of(delimiters, at);
    if (end == std::string::npos) return {};
    return std::string_view(text).substr(at, end - at);
}

// Does the same, faster for a single delimiter. It stores the result only then.
template <typename Found>
std::string_view findDelimited(const std::string& text, std::size_t at, const std::string& delimiters, Found& kept) {
    if (delimiters.size() != 1) return findAnyDelimited(text, at, delimiters);
    const char delimiter = delimiters.front();
    if (kept.at != (at | kDelimitedMark) || kept.value != delimiter) {
        const std::size_t end = text.find(delimiter, at);
        kept = {at | kDelimitedMark, end == std::string::npos ? at : end, false, delimiter};
    }
    return {text.data() + at, kept.end - at};
}

// Returns the position in `text` at which `token`, a part of it, ends.
std::size_t endOf(std::string_view token, const std::string& text) {
    return static_cast<std::size_t>(token.data() - text.data()) + token.size();
}

// Skips a plus sign, which from_chars() does not accept. It keeps the plus of "+-1", so that from_chars() refuses it.
const char* withoutPlus(const char* begin, const char* end) {
    return end - begin > 1 && *begin == kPlus && begin[1] != kMinus ? begin + 1 : begin;
}

// The result of reading a number: its text without a plus sign, and its value if there is no error.
template <typename Number>
struct Reading {
    std::string_view text;
    Number value{};
    std::errc error{};

    bool isNumber() const { return error == std::errc(); }
};

bool isEndOfToken(const char* at, const char* end) { return at == end || isWhiteSpace(*at); }

template <typename Number>
Reading<Number> readNumber(const std::string& text, std::size_t at) {
    const char* const end = text.data() + text.size();
    const char* const begin = withoutPlus(text.data() + afterWhiteSpace(text, at), end);
    Reading<Number> reading;
    const auto [behind, error] = std::from_chars(begin, end, reading.value);
    reading.error = error;
    reading.text = std::string_view(begin, static_cast<std::size_t>(behind - begin));
    const bool hasNote = behind != begin && behind[-1] == kCloseParen;  // nan(...)
    if (!isEndOfToken(behind, end) || hasNote) reading.error = std::errc::invalid_argument;
    return reading;
}

// Returns true if an out-of-range number is too small, and false if it is too large. Such a number is hundreds of
// powers of ten away from 1, so the position of its first digit decides.
bool isTooSmall(std::string_view number) {
    const std::size_t mantissaEnd = std::min(number.find_first_of(kExponentSigns), number.size());
    const std::size_t point = std::min(number.find('.'), mantissaEnd);
    const std::size_t firstDigit = number.find_first_of(kNonZeroDigits);

    int64_t exponent = 0;
    if (mantissaEnd != number.size()) {
        const char* const end = number.data() + number.size();
        const char* const written = withoutPlus(number.data() + mantissaEnd + 1, end);
        const std::errc error = std::from_chars(written, end, exponent).ec;
        if (error == std::errc::result_out_of_range) return *written == kMinus;
    }
    return exponent < static_cast<int64_t>(firstDigit) - static_cast<int64_t>(point);
}

Reading<double> readDouble(const std::string& text, std::size_t at) {
    Reading<double> reading = readNumber<double>(text, at);
    if (reading.error == std::errc::result_out_of_range && isTooSmall(reading.text)) {
        reading.value = reading.text[0] == kMinus ? -0.0 : 0.0;
        reading.error = std::errc();
    }
    return reading;
}

// Returns `reading` in the form in which the scanner keeps it.
template <typename Found, typename Number>
Found found(const std::string& text, std::size_t at, const Reading<Number>& reading) {
    return {at, endOf(reading.text, text), reading.isNumber(), reading.value};
}

// A fast path for integers of at most 18 digits, which cannot overflow. Returns false for any other token, even if it
// is an integer.
template <typename Found>
bool findPlainInt64(const std::string& text, std::size_t at, Found& found) {
    constexpr std::ptrdiff_t kSafeDigits = 18;
    const char* const end = text.data() + text.size();
    const char* const begin = withoutPlus(text.data() + afterWhiteSpace(text, at), end);
    const bool isNegative = begin != end && *begin == kMinus;
    const char* const digits = begin + (isNegative ? 1 : 0);
    const char* behind = digits;
    int64_t sum = 0;
    for (; behind != end && isDigit(*behind); ++behind) {
        sum = static_cast<int64_t>(10 * static_cast<uint64_t>(sum) + static_cast<uint64_t>(*behind - '0'));
    }
    const std::ptrdiff_t count = behind - digits;
    if (count < 1 || count > kSafeDigits || !isEndOfToken(behind, end)) return false;
    found.at = at;
    found.end = static_cast<std::size_t>(behind - text.data());
    found.isNumber = true;
    found.value = isNegative ? -sum : sum;
    return true;
}

// These functions are not inlined, so that their callers need no stack frame, which is a large part of the cost of
// reading an integer.
template <typename Found>
[[gnu::noinline]] void findAnyInt64(const std::string& text, std::size_t at, Found& kept) {
    kept = found<Found>(text, at, readNumber<int64_t>(text, at));
}

template <typename Found>
[[gnu::noinline]] void findInt64(const std::string& text, std::size_t at, Found& kept) {
    if (!findPlainInt64(text, at, kept)) findAnyInt64(text, at, kept);
}

template <typename Found>
[[gnu::noinline]] void findDouble(const std::string& text, std::size_t at, Found& kept) {
    kept = found<Found>(text, at, readDouble(text, at));
}

// Makes the compiler emit and export the inline members, for add-ons whose compiler does not inline them.
[[gnu::used]] constexpr struct {
    bool (Scanner::*hasNextChar)() const;
    char (Scanner::*nextChar)();
} kInlineButExported = {&Scanner::hasNextChar, &Scanner::nextChar};

}  // namespace

Scanner::Scanner() = default;

Scanner::~Scanner() = default;

void Scanner::reset(const std::string& text) {
    m_text = text;
    m_position = 0;
    m_double = {};
    m_int64 = {};
}

void Scanner::skipWhitespace() { m_position = afterWhiteSpace(m_text, m_position); }

bool Scanner::hasNextChar(char c) const { return hasNextChar() && m_text[m_position] == c; }

bool Scanner::hasNextToken() const { return !findToken(m_text, m_position, m_int64).empty(); }

std::string Scanner::nextToken() {
    const std::string_view token = findToken(m_text, m_position, m_int64);
    std::string result(token);
    if (!token.empty()) m_position = endOf(token, m_text);
    return result;
}

bool Scanner::hasNextToken(const std::string& delimiters) const {
    return !findDelimited(m_text, m_position, delimiters, m_int64).empty();
}

std::string Scanner::nextToken(const std::string& delimiters) {
    const std::string_view token = findDelimited(m_text, m_position, delimiters, m_int64);
    std::string result(token);
    m_position += token.size();
    return result;
}

bool Scanner::hasNextDoubleToken() const { return doubleHere().isNumber; }

double Scanner::nextDoubleToken() {
    const Found<double>& found = doubleHere();
    if (!found.isNumber) return 0.0;
    m_position = found.end;
    return found.value;
}

bool Scanner::hasNextInt64Token() const { return int64Here().isNumber; }

int64_t Scanner::nextInt64Token() {
    const Found<int64_t>& found = int64Here();
    if (!found.isNumber) return 0;
    m_position = found.end;
    return found.value;
}

const Scanner::Found<double>& Scanner::doubleHere() const {
    if (m_double.at != m_position) findDouble(m_text, m_position, m_double);
    return m_double;
}

const Scanner::Found<int64_t>& Scanner::int64Here() const {
    if (m_int64.at != m_position) findInt64(m_text, m_position, m_int64);
    return m_int64;
}

}  // namespace vexa
