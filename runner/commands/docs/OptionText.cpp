#include "commands/docs/OptionText.h"

#include <algorithm>
#include <vector>

#include "language/ValueText.h"
#include "text/NearNames.h"

namespace vexa::runner {
namespace {

std::string asCode(const std::string& text) { return '`' + text + '`'; }

std::string plainType(OptionType_e type) {
    switch (type) {
        case OptionType_e::String: return "text";
        case OptionType_e::Set: return "set";
        case OptionType_e::Choice: return "choice";
        default: return nameOf(type);
    }
}

std::string choiceText(const OptionDescription& option) {
    std::vector<std::string> values;
    for (const std::string& value : option.values) values.push_back(asCode(value));
    return alternatives(values);
}

std::string limitsText(const OptionDescription& option) {
    if (option.min && option.max) return option.min->text + " to " + option.max->text;
    if (option.min) return option.min->text + " or more";
    if (option.max) return option.max->text + " or less";
    return "";
}

}  // namespace

std::string withoutMarks(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '`'), text.end());
    return text;
}

std::string typeText(const OptionDescription& option) {
    std::string text = option.type == OptionType_e::Choice ? choiceText(option) : plainType(option.type);
    if (!limitsText(option).empty()) text += ", " + limitsText(option);
    if (!option.mayBeEmpty) text += ", not empty";
    if (option.isRepeatable) text += ", repeatable";
    return text;
}

std::string defaultText(const OptionDescription& option, CommandKind_e kind) {
    if (option.isRequired) return "required";
    if (!option.defaultValue) return option.without;
    return asCode(writtenValue(*option.defaultValue, option, kind));
}

std::string syntaxText(const AddOnDescription& addOn, const CommandDescription& command) {
    std::string text = addOn.addOn + ' ' + command.name;
    for (const OptionDescription& option : command.options) {
        const std::string form = assignment(option.name, plainType(option.type), command.kind);
        text += ' ' + (option.isRequired ? form : '[' + form + ']') + (option.isRepeatable ? "..." : "");
    }
    return text;
}

}  // namespace vexa::runner
