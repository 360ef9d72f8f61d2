#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vexa::runner {

/// How an add-on reads the text of a command, which decides how options are written.
enum class CommandKind_e {
    Command,   ///< with option classes: `NAME=value`, names in the letter case of the description
    Processor  ///< with the command processor: `NAME = value`, names in any letter case
};

/// The type of an option's value.
enum class OptionType_e { Boolean, UInt64, Int32, Int64, Double, String, Set, Choice };

/// A number of a description, and its text in messages and commands.
struct DescribedNumber {
    long double value = 0;  ///< holds every integer of 64 bits exactly
    std::string text;
};

/// The description of an option.
struct OptionDescription {
    std::string name;
    OptionType_e type = OptionType_e::String;
    std::string help;                         ///< one line
    std::optional<std::string> defaultValue;  ///< without quotes: `TRUE`, `12`, `wake.txt`, `[1-3]`
    std::string without;                      ///< what the command does without the option; may be empty
    std::optional<DescribedNumber> min;       ///< the least number, or the least member of a set
    std::optional<DescribedNumber> max;       ///< the greatest number, or the greatest member of a set
    std::vector<std::string> values;          ///< the values of a choice
    bool isRequired = false;
    bool isRepeatable = false;
    bool mayBeEmpty = true;  ///< whether a text or a set may be empty
    bool hasEscapes = true;  ///< whether a backslash escapes the next character of a text; only of a processor
};

/// The description of a command.
struct CommandDescription {
    std::string name;
    CommandKind_e kind = CommandKind_e::Command;
    std::string purpose;  ///< one line
    std::vector<OptionDescription> options;
    std::vector<std::string> before;    ///< commands without the add-on's id that have to run first
    std::vector<std::string> examples;  ///< commands without the add-on's id
};

/// The description of an add-on's commands.
struct AddOnDescription {
    std::string addOn;  ///< the add-on's id
    std::vector<CommandDescription> commands;
};

/// The name of a type in a description, and the types of a kind of command in their order.
const char* nameOf(OptionType_e type);
const std::vector<OptionType_e>& typesOf(CommandKind_e kind);
/// The name of a kind in a description: "command" or "processor".
const char* nameOf(CommandKind_e kind);

/// Whether values of \p type are numbers, integers, or written in quotes.
bool isNumber(OptionType_e type);
bool isInteger(OptionType_e type);
bool isQuoted(OptionType_e type);

/// The least and the greatest value of an integer type.
DescribedNumber leastOf(OptionType_e type);
DescribedNumber greatestOf(OptionType_e type);

}  // namespace vexa::runner
