#include "trace/SpanLine.h"

#include <algorithm>
#include <charconv>

#include "text/StartsWith.h"

namespace vexa::runner {
namespace {

using Kind_e = TracedSpan::Kind_e;

bool isDecimalDigit(char c) { return c >= '0' && c <= '9'; }

// Takes the parts of a line, one after the other. Each function returns false if the line goes on with something else.
// JSON allows more than what they take.
class LineScanner {
public:
    explicit LineScanner(std::string_view line) : m_rest(line) {}

    bool isAtEnd() const { return m_rest.empty(); }

    bool take(std::string_view text) {
        if (!startsWith(m_rest, text)) return false;
        m_rest.remove_prefix(text.size());
        return true;
    }

    // Takes a text up to its closing quote. Control characters and all but ASCII need the JSON library.
    bool takeText(std::string& text) {
        text.clear();
        for (;;) {
            const auto special = std::find_if(m_rest.begin(), m_rest.end(), isSpecial);
            const auto length = static_cast<std::size_t>(special - m_rest.begin());
            text.append(m_rest.substr(0, length));
            m_rest.remove_prefix(length);
            if (take("\"")) return true;
            if (!take("\\") || m_rest.empty() || (m_rest.front() != '"' && m_rest.front() != '\\')) return false;
            text += m_rest.front();
            m_rest.remove_prefix(1);
        }
    }

    template <class Integer>
    bool takeInteger(Integer& number) {
        constexpr std::size_t kMostDigits = 18;  // of each number with so many digits is an int64_t
        const std::size_t digits = countDigits();
        return digits <= kMostDigits && takeNumber(digits, number);
    }

    bool takeDecimal(double& number) {
        const std::size_t digits = countDigits();
        if (digits == m_rest.size() || m_rest[digits] != '.') return false;
        const std::size_t decimals = countDigits(digits + 1);
        return decimals != 0 && takeNumber(digits + 1 + decimals, number);
    }

private:
    static bool isSpecial(char c) { return c < ' ' || c > '~' || c == '"' || c == '\\'; }

    std::size_t countDigits(std::size_t from = 0) const {
        const std::string_view text = m_rest.substr(from);
        return static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isDecimalDigit) - text.begin());
    }

    // JSON has no zeros before a number.
    template <class Number>
    bool takeNumber(std::size_t size, Number& number) {
        if (size == 0 || !isDecimalDigit(m_rest.front())) return false;
        if (m_rest.front() == '0' && size > 1 && isDecimalDigit(m_rest[1])) return false;
        const bool isRead = std::from_chars(m_rest.data(), m_rest.data() + size, number).ec == std::errc();
        m_rest.remove_prefix(size);
        return isRead;
    }

    std::string_view m_rest;
};

bool takeKind(LineScanner& line, SpanEdge& edge) {
    const bool isCall = line.take(R"(,"cat":"call","ph":")");
    edge.kind = isCall ? Kind_e::Call : Kind_e::Scope;
    if (!isCall && !line.take(R"(,"cat":"scope","ph":")")) return false;
    edge.number = 0;
    edge.begins = line.take("B\"");
    return edge.begins || line.take("E\"");
}

bool takeArguments(LineScanner& line, SpanEdge& edge) {
    if (!line.take(R"(,"args":{)")) return false;
    if (edge.kind == Kind_e::Call && !(line.take(R"("number":)") && line.takeInteger(edge.number) && line.take(",")))
        return false;
    return line.take(R"("arguments":")") && line.takeText(edge.text) && line.take("}}");
}

bool takeResult(LineScanner& line, SpanEdge& edge) {
    if (edge.kind == Kind_e::Scope) return line.take("}");
    if (!line.take(R"(,"args":{"result":")") || !line.takeText(edge.text)) return false;
    if (line.take(R"(,"threw":true)")) edge.text = kThrew;
    return line.take("}}");
}

}  // namespace

bool scanSpanEdge(std::string_view line, SpanEdge& edge) {
    LineScanner rest(line);
    std::int64_t process = 0;
    return rest.take(R"({"name":")") && rest.takeText(edge.name) && takeKind(rest, edge) && rest.take(R"(,"pid":)") &&
           rest.takeInteger(process) && rest.take(R"(,"tid":)") && rest.takeInteger(edge.thread) &&
           rest.take(R"(,"ts":)") && rest.takeDecimal(edge.time) &&
           (edge.begins ? takeArguments(rest, edge) : takeResult(rest, edge)) && rest.isAtEnd();
}

}  // namespace vexa::runner
