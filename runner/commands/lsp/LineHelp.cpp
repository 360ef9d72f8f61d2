#include "commands/lsp/LineHelp.h"

#include "commands/docs/OptionText.h"
#include "language/MacroLine.h"

namespace vexa::runner {
namespace {

bool holds(Span span, std::size_t at) { return !span.isEmpty() && span.begin <= at && at <= span.end; }

LineHelp helpOf(const AddOnDescription& addOn, Span span) {
    LineHelp help{LinePart_e::AddOn, span, addOn.addOn, ""};
    for (const CommandDescription& command : addOn.commands) {
        help.detail += "- `" + command.name + "`: " + command.purpose + '\n';
    }
    return help;
}

LineHelp helpOf(const AddOnDescription& addOn, const CommandDescription& command, Span span) {
    LineHelp help{LinePart_e::Command, span, syntaxText(addOn, command), command.purpose + '\n'};
    if (!command.examples.empty()) help.detail += "\nExample: `" + addOn.addOn + ' ' + command.examples.front() + "`\n";
    return help;
}

LineHelp helpOf(const OptionDescription& option, CommandKind_e kind, LinePart_e part, Span span) {
    LineHelp help{part, span, option.name, option.help + "\n\nType: " + typeText(option) + '\n'};
    const std::string without = defaultText(option, kind);
    if (option.isRequired) {
        help.detail += "\nThe option is required.\n";
    } else if (!without.empty()) {
        help.detail += "\nWithout the option: " + without + '\n';
    }
    return help;
}

}  // namespace

std::optional<LineHelp> helpAt(std::string_view line, std::size_t at, const Descriptions& descriptions) {
    const MacroLine parts = parseLine(line, descriptions);
    if (parts.addOn == nullptr) return std::nullopt;
    if (holds(parts.id, at)) return helpOf(*parts.addOn, parts.id);
    if (parts.command == nullptr) return std::nullopt;
    if (holds(parts.word, at)) return helpOf(*parts.addOn, *parts.command, parts.word);
    for (const WrittenOption& option : parts.options) {
        const bool isName = holds(option.name, at);
        if (option.description == nullptr || (!isName && !holds(option.value, at))) continue;
        return helpOf(*option.description, parts.command->kind, isName ? LinePart_e::Option : LinePart_e::Value,
                      isName ? option.name : option.value);
    }
    return std::nullopt;
}

}  // namespace vexa::runner
