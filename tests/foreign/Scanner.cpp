#include "vexa/Scanner.h"

#include <charconv>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "foreign/ScannerCalls.h"

namespace vexa {
namespace {

thread_local foreign::ScannerCalls* g_calls = nullptr;
thread_local char g_characterAtEnd = '=';

bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view afterWhiteSpace(std::string_view text) {
    while (!text.empty() && isWhiteSpace(text.front())) text.remove_prefix(1);
    return text;
}

std::string_view firstToken(std::string_view text) {
    text = afterWhiteSpace(text);
    std::size_t size = 0;
    while (size < text.size() && !isWhiteSpace(text[size])) ++size;
    return text.substr(0, size);
}

// Returns an empty text if no delimiter follows.
std::string_view firstToken(std::string_view text, std::string_view delimiters) {
    const std::size_t size = text.find_first_of(delimiters);
    return size == std::string_view::npos ? std::string_view() : text.substr(0, size);
}

template <class Number>
bool readNumber(std::string_view token, Number& number) {
    if (token.size() > 1 && token[0] == '+' && token[1] != '-') token.remove_prefix(1);
    const char* const end = token.data() + token.size();
    const std::from_chars_result result = std::from_chars(token.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

// Throws, because the result of this call is not defined.
void require(bool isFixed, const char* operation) {
    if (!isFixed) throw std::logic_error(std::string(operation) + " was called with nothing to return");
}

}  // namespace

namespace foreign {

ScannerCalls::ScannerCalls(std::size_t most) : m_most(most) {
    m_calls.reserve(most);
    g_calls = this;
}

ScannerCalls::~ScannerCalls() { g_calls = nullptr; }

std::vector<std::string> ScannerCalls::all() const {
    std::vector<std::string> calls;
    for (const auto& [operation, argument] : m_calls) {
        calls.emplace_back(operation);
        if (argument != '\0') (calls.back() += ' ') += argument;
    }
    return calls;
}

void ScannerCalls::add(const char* operation, char argument) {
    if (g_calls == nullptr) return;
    if (g_calls->m_calls.size() == g_calls->m_most) throw TooManyCalls();
    g_calls->m_calls.push_back({operation, argument});
}

void setCharacterAtEnd(char c) { g_characterAtEnd = c; }

}  // namespace foreign

using foreign::ScannerCalls;

struct Scanner::Impl {
    // Returns `token`, a part of the unread text, and moves past it.
    std::string take(std::string_view token) {
        std::string taken(token);
        left.remove_prefix(static_cast<std::size_t>(token.data() - left.data()) + token.size());
        return taken;
    }

    template <class Number>
    bool hasNumber() const {
        Number number{};
        return readNumber(firstToken(left), number);
    }

    template <class Number>
    Number takeNumber() {
        Number number{};
        require(readNumber(firstToken(left), number), "A number");
        take(firstToken(left));
        return number;
    }

    std::string text;
    std::string_view left;
};

Scanner::Scanner() : m_impl(std::make_unique<Impl>()) {}

Scanner::~Scanner() = default;

void Scanner::reset(const std::string& text) {
    ScannerCalls::add("reset");
    m_impl->text = text;
    m_impl->left = m_impl->text;
}

void Scanner::skipWhitespace() {
    ScannerCalls::add("skipWhitespace");
    m_impl->left = afterWhiteSpace(m_impl->left);
}

bool Scanner::hasNextChar() const {
    ScannerCalls::add("hasNextChar");
    return !m_impl->left.empty();
}

bool Scanner::hasNextChar(char c) const {
    ScannerCalls::add("hasNextChar", c);
    return !m_impl->left.empty() && m_impl->left.front() == c;
}

char Scanner::nextChar() {
    ScannerCalls::add("nextChar");
    if (m_impl->left.empty()) return g_characterAtEnd;
    const char c = m_impl->left.front();
    m_impl->left.remove_prefix(1);
    return c;
}

bool Scanner::hasNextToken() const {
    ScannerCalls::add("hasNextToken");
    return !firstToken(m_impl->left).empty();
}

std::string Scanner::nextToken() {
    ScannerCalls::add("nextToken");
    require(!firstToken(m_impl->left).empty(), "nextToken()");
    return m_impl->take(firstToken(m_impl->left));
}

bool Scanner::hasNextToken(const std::string& delimiters) const {
    ScannerCalls::add("hasNextToken", delimiters.front());
    return !firstToken(m_impl->left, delimiters).empty();
}

std::string Scanner::nextToken(const std::string& delimiters) {
    ScannerCalls::add("nextToken", delimiters.front());
    require(!firstToken(m_impl->left, delimiters).empty(), "nextToken(delimiters)");
    return m_impl->take(firstToken(m_impl->left, delimiters));
}

bool Scanner::hasNextDoubleToken() const {
    ScannerCalls::add("hasNextDoubleToken");
    return m_impl->hasNumber<double>();
}

double Scanner::nextDoubleToken() {
    ScannerCalls::add("nextDoubleToken");
    return m_impl->takeNumber<double>();
}

bool Scanner::hasNextInt64Token() const {
    ScannerCalls::add("hasNextInt64Token");
    return m_impl->hasNumber<int64_t>();
}

int64_t Scanner::nextInt64Token() {
    ScannerCalls::add("nextInt64Token");
    return m_impl->takeNumber<int64_t>();
}

}  // namespace vexa
