#include "language/Diagnostic.h"

namespace vexa::runner {
namespace {

constexpr standin::Severity_e kError = standin::Severity_e::Error;
constexpr const char* kFamily = "Macros";
constexpr const char* kRefused = "The add-on refuses the command, or does something else than the user meant.";

}  // namespace

const std::vector<standin::Rule>& languageRules() {
    static const std::vector<standin::Rule> rules = {
        {kWrongLine, kFamily, kError, "A line has no NUL byte, and a carriage return only at its end.",
         "The runner refuses the macro file.", "Remove the byte."},
        {kUnknownAddOn, kFamily, kError, "Every command starts with the id of an add-on.",
         "The runner refuses the macro file.", "Correct the id, or pass the description of the add-on."},
        {kUnknownCommand, kFamily, kError, "The add-on has the command.", kRefused, "Correct the name of the command."},
        {kUnknownOption, kFamily, kError, "The command has the option.", kRefused, "Correct the name of the option."},
        {kMissingOption, kFamily, kError, "A command has all its required options.", kRefused, "Add the option."},
        {kRepeatedOption, kFamily, kError, "A command has an option once, unless the option is repeatable.", kRefused,
         "Remove one of the two."},
        {kWrongAssignment, kFamily, kError,
         "A command of kind command writes NAME=value, and a command of kind processor NAME = value.", kRefused,
         "Correct the blanks around the equals sign."},
        {kWrongValue, kFamily, kError, "A value has the type of its option.", kRefused, "Correct the value."},
        {kOutOfRange, kFamily, kError, "A number is in the range of its option.", kRefused, "Correct the value."},
        {kWrongQuote, kFamily, kError, "A text is in single or in double quotes.",
         "Without its closing quote, the command processor never finishes reading a text.", "Add the quote."},
        {kWrongBracket, kFamily, kError, "A set is in brackets.", kRefused, "Add the bracket."},
    };
    return rules;
}

}  // namespace vexa::runner
