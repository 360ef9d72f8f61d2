#pragma once

#include <string>
#include <utility>
#include <vector>

#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandError.h"

namespace vexa::vexautilutil {

/// A text, its tokens, and the current position among them.
struct Tokens {
    explicit Tokens(std::string macroText)
        : text(std::move(macroText)),
          stream(MacroCommandAbstract::tokenize(text)),
          current(stream.begin()),
          end(stream.end()) {}
    Tokens(const Tokens&) = delete;
    Tokens& operator=(const Tokens&) = delete;

    /// Returns the tokens from the current one on.
    std::vector<std::string> rest() const { return {current, end}; }

    const std::string text;
    const MacroTokenizer stream;
    MacroTokenIterator current;
    const MacroTokenIterator end;
};

/// Returns the message of the MacroCommandError that `operation` throws; "accepted" if it throws none.
template <class Operation>
std::string refusalOf(Operation operation) {
    try {
        operation();
    } catch (const MacroCommandError& error) {
        return error.message();
    }
    return "accepted";
}

/// Reads an option at the start of `text`. `more` are the arguments of its constructor after the iterators.
template <class Option, class... More>
Option parsedAs(const std::string& text, More... more) {
    Tokens tokens(text);
    return Option(tokens.current, tokens.end, more...);
}

/// Returns the message with which the option refuses `text`. Stores the tokens from the offending one on in `rest`
/// unless it is null.
template <class Option, class... More>
std::string refusedAs(const std::string& text, std::vector<std::string>* rest, More... more) {
    Tokens tokens(text);
    std::string message = refusalOf([&] { Option(tokens.current, tokens.end, more...); });
    if (rest != nullptr) *rest = tokens.rest();
    return message;
}

}  // namespace vexa::vexautilutil
