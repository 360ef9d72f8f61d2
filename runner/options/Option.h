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
/// completions of shells read it.
class Option {
public:
    /// \param names      what the user gives: `{"-j", "--jobs"}`; none for an argument by place
    /// \param valueName  what the help calls the value: `FILE`; empty for a switch. Completion offers files for names
    ///                   that start with FILE, FOLDER, MACRO or TRACE.
    /// \param help       what the option does, without a full stop
    Option(std::vector<std::string> names, std::string valueName, std::string help, Destination destination)
        : m_names(std::move(names)),
          m_valueName(std::move(valueName)),
          m_help(std::move(help)),
          m_destination(std::move(destination)) {}

    /// It cannot be left out.
    Option& require() { return m_isRequired = true, *this; }
    /// It takes only values for which \p whyNot says nothing.
    Option& check(WhyNot whyNot) { return m_check = std::move(whyNot), *this; }
    /// It takes only integers of \p range.
    Option& check(Range range) { return m_range = range, *this; }
    /// It takes only \p words. Completion offers them.
    Option& allow(std::vector<std::string> words) { return m_areOthersRefused = true, suggest(std::move(words)); }
    /// Completion offers \p words.
    Option& suggest(std::vector<std::string> words) { return m_words = std::move(words), *this; }
    /// It does not go with the option whose label() is \p other, which says the same of this one.
    Option& exclude(std::string other) { return m_excluded = std::move(other), *this; }

    const std::vector<std::string>& names() const { return m_names; }
    const std::string& valueName() const { return m_valueName; }
    const std::string& help() const { return m_help; }
    const Destination& destination() const { return m_destination; }
    bool isRequired() const { return m_isRequired; }
    const WhyNot& whyNot() const { return m_check; }
    const std::optional<Range>& range() const { return m_range; }
    const std::vector<std::string>& words() const { return m_words; }
    bool areOtherWordsRefused() const { return m_areOthersRefused; }
    const std::string& excluded() const { return m_excluded; }

    bool isArgument() const { return m_names.empty(); }
    bool isRepeatable() const { return std::holds_alternative<std::vector<std::string>*>(m_destination); }
    /// What messages call it: its long name; for an argument that of its value.
    const std::string& label() const { return isArgument() ? m_valueName : m_names.back(); }
    /// Whether its value is the name of a file or a folder.
    bool takesFiles() const;

private:
    std::vector<std::string> m_names;
    std::string m_valueName;
    std::string m_help;
    Destination m_destination;
    bool m_isRequired = false;
    WhyNot m_check;
    std::optional<Range> m_range;
    std::vector<std::string> m_words;
    bool m_areOthersRefused = false;
    std::string m_excluded;
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
