// Compares the scanner's numbers with those of the C library, and its tokens and white space with a simple loop.

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstring>
#include <optional>

#include "Fuzz.h"
#include "vexa/Scanner.h"

namespace vexa::fuzz {
namespace {

bool isWhiteSpace(char c) { return c != '\0' && std::strchr(" \t\n\r\v\f", c) != nullptr; }

std::string firstToken(const std::string& text) {
    std::size_t begin = 0;
    while (begin < text.size() && isWhiteSpace(text[begin])) ++begin;
    std::size_t end = begin;
    while (end < text.size() && !isWhiteSpace(text[end])) ++end;
    return text.substr(begin, end - begin);
}

// Excludes tokens that only the C library accepts, such as hexadecimal numbers and nan(...).
bool hasOnly(const std::string& token, const char* characters) {
    return !token.empty() && token.find_first_not_of(characters) == std::string::npos;
}

std::optional<std::int64_t> plainInteger(const std::string& token) {
    if (!hasOnly(token, "+-0123456789")) return std::nullopt;
    char* end = nullptr;
    errno = 0;
    const long long value = std::strtoll(token.c_str(), &end, 10);
    if (*end != '\0' || end == token.c_str() || errno == ERANGE) return std::nullopt;
    return value;
}

std::optional<double> plainDouble(const std::string& token) {
    if (!hasOnly(token, "+-.0123456789eEinfatyINFATY")) return std::nullopt;
    char* end = nullptr;
    const double value = std::strtod(token.c_str(), &end);
    if (*end != '\0' || end == token.c_str()) return std::nullopt;
    const bool isOverflow = std::isinf(value) && token.find_first_of("iI") == std::string::npos;
    return isOverflow ? std::nullopt : std::optional(value);
}

bool isSame(double a, double b) { return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b); }

void tryNumbers(const std::string& text) {
    Scanner scanner;
    scanner.reset(text);
    const std::string token = firstToken(text);
    const auto integer = plainInteger(token);
    const auto number = plainDouble(token);
    require(scanner.hasNextInt64Token() == integer.has_value(), "an integer is told from what is none", text);
    require(scanner.hasNextDoubleToken() == number.has_value(), "a double is told from what is none", text);
    if (integer) {
        require(scanner.nextInt64Token() == *integer, "an integer is read as the C library does", text);
        scanner.reset(text);
    }
    if (number) require(isSame(scanner.nextDoubleToken(), *number), "a double is read as the C library does", text);
}

void tryTokens(const std::string& text) {
    Scanner scanner;
    scanner.reset(text);
    std::string rest = text;
    while (scanner.hasNextToken()) {
        const std::string token = firstToken(rest);
        require(scanner.nextToken() == token, "a token ends at white space", text);
        rest.erase(0, rest.find(token) + token.size());
    }
    require(firstToken(rest).empty(), "no token is left out", text);
    while (scanner.hasNextChar()) require(isWhiteSpace(scanner.nextChar()), "white space is left", text);
}

}  // namespace
}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = vexa::fuzz::textOf(data, size);
    vexa::fuzz::tryNumbers(text);
    vexa::fuzz::tryTokens(text);
    return 0;
}
