#include "text/CommandWords.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace vexa::runner {
namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";

std::size_t endOfValue(const std::string& text, std::size_t at) {
    const char first = text[at];
    if (first == '\'' || first == '"') {
        for (++at; at < text.size() && text[at] != first; ++at) {
            if (text[at] == '\\') ++at;
        }
        return std::min(at + 1, text.size());
    }
    if (first == '[') return std::min(text.find(']', at), text.size() - 1) + 1;
    return std::min(text.find_first_of(kBlanks, at), text.size());
}

std::size_t skipBlanks(const std::string& text, std::size_t at) {
    return std::min(text.find_first_not_of(kBlanks, at), text.size());
}

}  // namespace

CommandWords::CommandWords(const std::string& text) {
    std::size_t at = skipBlanks(text, 0);
    const std::size_t wordEnd = std::min(text.find_first_of(kBlanks, at), text.size());
    word = text.substr(at, wordEnd - at);
    for (at = skipBlanks(text, wordEnd); at < text.size(); at = skipBlanks(text, at)) {
        const std::size_t nameEnd = std::min(text.find_first_of(" \t\n\v\f\r=", at), text.size());
        Option option = {text.substr(at, nameEnd - at), ""};
        at = skipBlanks(text, nameEnd);
        if (at < text.size() && text[at] == '=') {
            at = skipBlanks(text, at + 1);
            const std::size_t valueEnd = at == text.size() ? at : endOfValue(text, at);
            option.value = text.substr(at, valueEnd - at);
            at = valueEnd;
        }
        options.push_back(std::move(option));
    }
}

std::string CommandWords::text() const {
    std::string text = word;
    for (const auto& [name, value] : options) text += ' ' + name + (value.empty() ? "" : " = " + value);
    return text;
}

}  // namespace vexa::runner
