#include "vexa/Scanner.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <system_error>

namespace vexa {
namespace {

constexpr char PLUS_token = '+';
constexpr char MINUS_token = '-';
constexpr char CLOSEPAREN_token = ')';
constexpr std::string_view kNonZeroDigits = "123456789";
constexpr std::string_view kExponentSigns = "eE";

// Not isspace(), which asks the locale.
bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::size_t afterWhiteSpace(const std::string& text, std::size_t at) {
    while (at < text.size() && isWhiteSpace(text[at])) ++at;
    return at;
}

// The first token from `at` on; empty when there is none.
std::string_view findToken(const std::string& text, std::size_t at) {
    const std::size_t begin = afterWhiteSpace(text, at);
    std::size_t end = begin;
    while (end < text.size() && !isWhiteSpace(text[end])) ++end;
    return std::string_view(text).substr(begin, end - begin);
}

// The characters from `at` to the first of `delimiters`; empty when no delimiter follows.
std::string_view findToken(const std::string& text, std::size_t at, const std::string& delimiters) {
    const std::size_t end = text.find_first_of(delimiters, at);
    if (end == std::string::npos) return {};
    return std::string_view(text).substr(at, end - at);
}

// Where in `text` the part of it that `token` is ends.
std::size_t endOf(std::string_view token, const std::string& text) {
    return static_cast<std::size_t>(token.data() - text.data()) + token.size();
}

// from_chars() knows a minus sign but no plus. Of "+-1" the plus is kept, so that it is refused.
std::string_view withoutPlus(std::string_view number) {
    const bool hasPlus = number.size() > 1 && number[0] == PLUS_token && number[1] != MINUS_token;
    return hasPlus ? number.substr(1) : number;
}

// What the next token is as a number: its text, without a plus sign, and its value when there is no error.
template <typename Number>
struct Reading {
    std::string_view text;
    Number value{};
    std::errc error{};

    bool isNumber() const { return error == std::errc(); }
};

template <typename Number>
Reading<Number> readNumber(const std::string& text, std::size_t at) {
    const std::string_view rest = withoutPlus(std::string_view(text).substr(afterWhiteSpace(text, at)));
    const char* const end = rest.data() + rest.size();
    Reading<Number> reading;
    const auto [behind, error] = std::from_chars(rest.data(), end, reading.value);
    reading.error = error;
    reading.text = rest.substr(0, static_cast<std::size_t>(behind - rest.data()));
    const bool isWholeToken = behind == end || isWhiteSpace(*behind);
    const bool hasNote = !reading.text.empty() && reading.text.back() == CLOSEPAREN_token;  // nan(...)
    if (!isWholeToken || hasNote) reading.error = std::errc::invalid_argument;
    return reading;
}

// Whether a well-formed number that is out of range is so by being too small. It is then hundreds of powers of ten
// below 1, so which side of 1 it is on need not be told to the digit.
bool isTooSmall(std::string_view number) {
    const std::size_t mantissaEnd = std::min(number.find_first_of(kExponentSigns), number.size());
    const std::size_t point = std::min(number.find('.'), mantissaEnd);
    const std::size_t firstDigit = number.find_first_of(kNonZeroDigits);

    int64_t exponent = 0;
    if (mantissaEnd != number.size()) {
        const std::string_view written = withoutPlus(number.substr(mantissaEnd + 1));
        const std::errc error = std::from_chars(written.data(), written.data() + written.size(), exponent).ec;
        if (error == std::errc::result_out_of_range) return written[0] == MINUS_token;
    }
    return exponent < static_cast<int64_t>(firstDigit) - static_cast<int64_t>(point);
}

Reading<double> readDouble(const std::string& text, std::size_t at) {
    Reading<double> reading = readNumber<double>(text, at);
    if (reading.error == std::errc::result_out_of_range && isTooSmall(reading.text)) {
        reading.value = reading.text[0] == MINUS_token ? -0.0 : 0.0;
        reading.error = std::errc();
    }
    return reading;
}

}  // namespace

Scanner::Scanner() = default;

Scanner::~Scanner() = default;

void Scanner::reset(const std::string& text) {
    m_text = text;
    m_position = 0;
}

void Scanner::skipWhitespace() { m_position = afterWhiteSpace(m_text, m_position); }

bool Scanner::hasNextChar() const { return m_position < m_text.size(); }

bool Scanner::hasNextChar(char c) const { return hasNextChar() && m_text[m_position] == c; }

char Scanner::nextChar() { return hasNextChar() ? m_text[m_position++] : '\0'; }

bool Scanner::hasNextToken() const { return !findToken(m_text, m_position).empty(); }

std::string Scanner::nextToken() {
    const std::string_view token = findToken(m_text, m_position);
    std::string result(token);
    if (!token.empty()) m_position = endOf(token, m_text);
    return result;
}

bool Scanner::hasNextToken(const std::string& delimiters) const {
    return !findToken(m_text, m_position, delimiters).empty();
}

std::string Scanner::nextToken(const std::string& delimiters) {
    const std::string_view token = findToken(m_text, m_position, delimiters);
    std::string result(token);
    m_position += token.size();
    return result;
}

bool Scanner::hasNextDoubleToken() const { return readDouble(m_text, m_position).isNumber(); }

double Scanner::nextDoubleToken() {
    const Reading<double> reading = readDouble(m_text, m_position);
    if (!reading.isNumber()) return 0.0;
    m_position = endOf(reading.text, m_text);
    return reading.value;
}

bool Scanner::hasNextInt64Token() const { return readNumber<int64_t>(m_text, m_position).isNumber(); }

int64_t Scanner::nextInt64Token() {
    const Reading<int64_t> reading = readNumber<int64_t>(m_text, m_position);
    if (!reading.isNumber()) return 0;
    m_position = endOf(reading.text, m_text);
    return reading.value;
}

}  // namespace vexa
