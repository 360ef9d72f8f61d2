#include "commands/repl/DescribedHelp.h"

#include <vector>

#include "commands/docs/OptionText.h"
#include "text/Columns.h"
#include "text/Printable.h"

namespace vexa::runner {
namespace {

using Rows = std::vector<std::vector<std::string>>;

std::string plain(const std::string& text) { return printableLine(withoutMarks(text)); }

std::string optionTable(const CommandDescription& command) {
    if (command.options.empty()) return "";
    Rows rows = {{"  option", "type", "default", "meaning"}};
    for (const OptionDescription& option : command.options) {
        rows.push_back({"  " + plain(option.name), plain(typeText(option)), plain(defaultText(option, command.kind)),
                        plain(option.help)});
    }
    return columnsOf(rows);
}

}  // namespace

std::string helpOfAddOn(const AddOnDescription& addOn) {
    if (addOn.commands.empty()) return "";
    Rows rows;
    for (const CommandDescription& command : addOn.commands) {
        rows.push_back({"  " + plain(command.name), plain(command.purpose)});
    }
    return "Commands; ':help " + plain(addOn.addOn + ' ' + addOn.commands.front().name) +
           "' shows the options of one:\n" + columnsOf(rows);
}

std::string helpOfCommand(const AddOnDescription& addOn, const CommandDescription& command) {
    std::string help = plain(syntaxText(addOn, command)) + "\n  " + plain(command.purpose) + '\n';
    help += optionTable(command);
    if (!command.examples.empty()) {
        help += "  example: " + printableLine(addOn.addOn + ' ' + command.examples.front()) + '\n';
    }
    return help;
}

}  // namespace vexa::runner
