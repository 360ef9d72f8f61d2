#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vexa::runner {

/// Shows the help of the command.
struct ShowHelp {};

/// Shows \p text, the program's version.
struct ShowVersion {
    std::string text;
};

/// Sets what is neither true nor false until the user says so.
struct SetSwitch {
    std::optional<bool>* value;
    bool isOn;
};

/// Takes the value as text, after the option's check.
using TakeText = std::function<void(const std::string&)>;

/// Where an option's value goes. A bool becomes true. Into a vector go the values of all times that the option is
/// given; all others may be given once. What is pointed to must live until the command has run.
using Destination =
    std::variant<ShowHelp, ShowVersion, SetSwitch, TakeText, bool*, int*, long*, std::size_t*, double*, std::string*,
                 std::optional<std::uint64_t>*, std::optional<std::string>*, std::vector<std::string>*>;

/// Says what is wrong with a value; nothing when it is fine.
using WhyNot = std::function<std::string(const std::string& value)>;

/// The integers from \p least to \p most.
struct Range {
    long least;
    long most;
};

/// One option of a command, or one argument that it takes by place. The parser, the help, the manual page and the
/// completions of shells read it. option(), flag() and argument() make one.
struct Option {
    std::vector<std::string> names;  ///< what the user gives: `{"-j", "--jobs"}`; none for an argument
    std::string valueName;           ///< what the help calls the value: `FILE`; empty for a switch
    std::string help;                ///< what the option does, without a full stop
    Destination destination;
    bool isRequired = false;              ///< whether it cannot be left out
    WhyNot whyNot = nullptr;              ///< which values it takes; may be empty
    std::optional<Range> range = {};      ///< which integers it takes
    std::vector<std::string> words = {};  ///< values that completion offers
    bool areOthersRefused = false;        ///< whether it takes only these words
    std::string excluded = {};            ///< the label() of what it does not go with, which says the same of this one

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
    /// What messages call it: its long name; for an argument that of its value.
    const std::string& label() const { return isArgument() ? valueName : names.back(); }
    /// Whether its value is a file or a folder. Its name tells: it starts with FILE, FOLDER, MACRO or TRACE.
    bool takesFiles() const;
};

/// An option with a value.
inline Option option(std::vector<std::string> names, std::string valueName, std::string help, Destination to) {
    return {std::move(names), std::move(valueName), std::move(help), std::move(to)};
}

/// An option without a value.
inline Option flag(std::vector<std::string> names, std::string help, Destination to) {
    return {std::move(names), "", std::move(help), std::move(to)};
}

/// A value that is given by its place.
inline Option argument(std::string valueName, std::string help, Destination to) {
    return {{}, std::move(valueName), std::move(help), std::move(to)};
}

}  // namespace vexa::runner
