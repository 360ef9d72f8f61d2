#include "commands/report/CallArguments.h"

#include <cstddef>

namespace vexa::runner {
namespace {

constexpr char QUOTE_token = '"';
constexpr char ESCAPE_token = '\\';
constexpr const char* kNull = "null";

char unescaped(char c) {
    switch (c) {
        case 'n': return '\n';
        case 'r': return '\r';
        case 't': return '\t';
        default: return c;
    }
}

// Starts at the opening quote and ends after the closing one.
std::string takeQuoted(const std::string& text, std::size_t& at) {
    std::string value;
    for (++at; at < text.size() && text[at] != QUOTE_token; ++at) {
        const bool isEscaped = text[at] == ESCAPE_token && at + 1 < text.size();
        value += isEscaped ? unescaped(text[++at]) : text[at];
    }
    ++at;
    return value;
}

}  // namespace

std::vector<std::optional<std::string>> textArguments(const std::string& arguments) {
    std::vector<std::optional<std::string>> texts;
    for (std::size_t at = 0; at < arguments.size();) {
        if (arguments[at] == QUOTE_token) {
            texts.emplace_back(takeQuoted(arguments, at));
        } else if (arguments.compare(at, 4, kNull) == 0) {
            texts.emplace_back();
            at += 4;
        } else {
            ++at;
        }
    }
    return texts;
}

}  // namespace vexa::runner
