#pragma once

#include <string>
#include <utility>
#include <vector>

#include "vexautilutil/MacroCommandAbstract.h"
#include "vexautilutil/MacroCommandError.h"

namespace vexa::vexautilutil {

/// A text, its tokens, and a place among them.
struct Tokens {
    explicit Tokens(std::string macroText)
        : text(std::move(macroText)),
          stream(MacroCommandAbstract::tokenize(text)),
          current(stream.begin()),
          end(stream.end()) {}
    Tokens(const Tokens&) = delete;
    Tokens& operator=(const Tokens&) = delete;

    /// The tokens from the current one on.
    std::vector<std::string> rest() const { return {current, end}; }

    const std::string text;
    const MacroTokenizer stream;
    MacroTokenIterator current;
    const MacroTokenIterator end;
};

/// The message of the MacroCommandError that `operation` throws; "accepted" when it throws none.
template <class Operation>
std::string refusalOf(Operation operation) {
    try {
        operation();
    } catch (const MacroCommandError& error) {
        return error.message();
    }
    return "accepted";
}

}  // namespace vexa::vexautilutil
