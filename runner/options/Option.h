#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "text/StartsWith.h"

namespace vexa::runner {

/// Shows the help of the command.
struct ShowHelp {};

/// Shows \p text, the program's version.
struct ShowVersion {
    std::string text;
};

/// Is called when the option is given.
using Act = std::function<void()>;

/// Gets the value as text, after the option's check.
using TakeText = std::function<void(const std::string&)>;

/// Where the parser puts an option's value. It sets a bool to true. A vector gets one value each time the user gives
/// the option; other options may be given once. A variable that is pointed to must live until the command has run.
using Destination =
    std::variant<ShowHelp, ShowVersion, Act, TakeText, bool*, int*, long*, std::size_t*, double*, std::string*,
                 std::optional<std::uint64_t>*, std::optional<std::string>*, std::vector<std::string>*>;

/// Returns what is wrong with a value; an empty text if the value is right.
using WhyNot = std::function<std::string(const std::string& value)>;

/// The integers from \p least to \p most.
struct Range {
    long least;
    long most;
};

/// An option or a positional argument of a command. The parser, the help, the manual page and the completions of shells
/// read it. Make one with option(), flag() or argument().
struct Option {
    std::vector<std::string> names;  ///< for example `{"-j", "--jobs"}`; empty for an argument
    std::string valueName;           ///< the name of the value in the help: `FILE`; empty for a switch
    std::string help;                ///< what the option does, without a full stop
    Destination destination;
    bool isRequired = false;              ///< whether the user must give it
    WhyNot whyNot = nullptr;              ///< checks the value; may be empty
    std::optional<Range> range = {};      ///< the integers that are allowed
    std::vector<std::string> words = {};  ///< values that completion offers
    bool areOthersRefused = false;        ///< whether other values are refused
    std::string excluded = {};  ///< the label() of an option that cannot be combined with it; that one names this one

    Option& require() {
        isRequired = true;
        return *this;
    }
    Option& check(WhyNot whyNotValue) {
        whyNot = std::move(whyNotValue);
        return *this;
    }
    Option& check(Range taken) {
        range = taken;
        return *this;
    }
    Option& allow(std::vector<std::string> allWords) {
        areOthersRefused = true;
        return suggest(std::move(allWords));
    }
    Option& suggest(std::vector<std::string> offered) {
        words = std::move(offered);
        return *this;
    }
    Option& exclude(std::string other) {
        excluded = std::move(other);
        return *this;
    }

    bool isArgument() const { return names.empty(); }
    bool isRepeatable() const { return std::holds_alternative<std::vector<std::string>*>(destination); }
    /// The name in messages: the long name, or the name of the value of an argument.
    const std::string& label() const { return isArgument() ? valueName : names.back(); }
    /// Whether its value is a file or a folder, by the start of its name.
    bool takesFiles() const {
        const auto isCalled = [this](const char* start) { return startsWith(valueName, start); };
        return isCalled("FILE") || isCalled("FOLDER") || isCalled("MACRO") || isCalled("TRACE") || isCalled("PROGRAM");
    }
};

/// An option with a value.
inline Option option(std::vector<std::string> names, std::string valueName, std::string help, Destination to) {
    return {std::move(names), std::move(valueName), std::move(help), std::move(to)};
}

/// Sets a value that is empty until the user gives it.
inline Act switchTo(std::optional<bool>& value, bool isOn) {
    return [&value, isOn] { value = isOn; };
}

/// An option without a value.
inline Option flag(std::vector<std::string> names, std::string help, Destination to) {
    return {std::move(names), "", std::move(help), std::move(to)};
}

/// A positional argument.
inline Option argument(std::string valueName, std::string help, Destination to) {
    return {{}, std::move(valueName), std::move(help), std::move(to)};
}

}  // namespace vexa::runner
