#include "options/HelpText.h"

#include <algorithm>
#include <string_view>

#include "terminal/WrappedText.h"
#include "text/Joined.h"
#include "text/Lines.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kUsualNameColumns = 30;
constexpr std::size_t kLeastText = 20;

// Wraps a line of a table, "  KEY  text", below its text. Does not change other lines, which are code.
std::string indentedLine(const std::string& line, std::size_t width) {
    const std::size_t gap = line.find("  ", std::min(line.find_first_not_of(' '), line.size()));
    const std::size_t text = line.find_first_not_of(' ', gap);
    if (gap == std::string::npos || text == std::string::npos) return line + '\n';
    return wrapped(std::string_view(line).substr(text), width, line.substr(0, text));
}

std::string footerText(const std::string& footer, std::size_t width) {
    std::string text;
    std::string paragraph;
    const auto endParagraph = [&] {
        if (!paragraph.empty()) text += wrapped(paragraph, width);
        paragraph.clear();
    };
    for (const std::string& line : linesOf(footer)) {
        const bool isIndented = line.empty() || line.front() == ' ';
        if (isIndented) {
            endParagraph();
            text += indentedLine(line, width);
        } else {
            paragraph += (paragraph.empty() ? "" : " ") + line;
        }
    }
    endParagraph();
    return text;
}

// "MACROFILE...", "[RULE]"
std::string usageOf(const Option& argument) {
    const std::string usage = argument.valueName + (argument.isRepeatable() ? "..." : "");
    return argument.isRequired ? usage : '[' + usage + ']';
}

// "-o,--output FILE.html REQUIRED"
std::string headOf(const Option& option) {
    std::string head = joined(option.names, ",");
    if (!option.valueName.empty()) head += (head.empty() ? "" : " ") + option.valueName;
    if (option.isRepeatable()) head += " ...";
    if (option.isRequired) head += " REQUIRED";
    if (!option.excluded.empty()) head += " Excludes: " + option.excluded;
    return head;
}

// Returns a row: the name in the left column, and the description in the right one.
std::string rowOf(const std::string& name, const std::string& text, std::size_t width) {
    const std::size_t nameColumns = std::min(kUsualNameColumns, width * 3 / 8);
    std::string start = "  " + name;
    std::string row;
    if (start.size() >= nameColumns) {
        row = start + '\n';
        start.clear();
    }
    start.resize(nameColumns, ' ');
    return row + wrapped(text, std::max(nameColumns + kLeastText, width), start);
}

std::string rowsOf(const char* title, const std::vector<const Option*>& options, std::size_t width) {
    std::string rows = options.empty() ? "" : std::string("\n") + title + ":\n";
    for (const Option* option : options) rows += rowOf(headOf(*option), option->help, width);
    return rows;
}

}  // namespace

std::string helpText(const Command& command, const std::string& call, std::size_t width) {
    std::string text = command.summary + "\nUsage: " + call + " [OPTIONS]";
    for (const Option* argument : argumentsOf(command)) text += ' ' + usageOf(*argument);
    text += command.commands.empty() ? "\n" : " [COMMAND]\n";
    text += rowsOf("Positionals", argumentsOf(command), width) + rowsOf("Options", namedOptionsOf(command), width);
    if (!command.commands.empty()) text += "\nCommands:\n";
    for (const Command* shown : shownCommands(command)) text += rowOf(shown->name, shown->summary, width);
    return text + '\n' + footerText(command.footer, width);
}

}  // namespace vexa::runner
