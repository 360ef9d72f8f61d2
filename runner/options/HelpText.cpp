#include "options/HelpText.h"

#include <algorithm>
#include <sstream>
#include <string_view>

#include "terminal/WrappedText.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kUsualNameColumns = 30;
constexpr std::size_t kLeastText = 20;

// A line of a table, "  KEY  text", is continued below its text. All others are code, which stays as it is.
std::string indentedLine(const std::string& line, std::size_t width) {
    const std::size_t gap = line.find("  ", std::min(line.find_first_not_of(' '), line.size()));
    const std::size_t text = line.find_first_not_of(' ', gap);
    if (gap == std::string::npos || text == std::string::npos) return line + '\n';
    return wrapped(std::string_view(line).substr(text), width, line.substr(0, text));
}

std::string footerText(const std::string& footer, std::size_t width) {
    std::istringstream lines(footer);
    std::string text;
    std::string paragraph;
    const auto endParagraph = [&] {
        if (!paragraph.empty()) text += wrapped(paragraph, width);
        paragraph.clear();
    };
    for (std::string line; std::getline(lines, line);) {
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
    std::string head;
    for (const std::string& name : option.names) head += (head.empty() ? "" : ",") + name;
    if (!option.valueName.empty()) head += (head.empty() ? "" : " ") + option.valueName;
    if (option.isRepeatable()) head += " ...";
    if (option.isRequired) head += " REQUIRED";
    if (!option.excluded.empty()) head += " Excludes: " + option.excluded;
    return head;
}

// Two columns. The right one has what the left one names.
class Table {
public:
    explicit Table(std::size_t width)
        : m_nameColumns(std::min(kUsualNameColumns, width * 3 / 8)),
          m_textColumns(std::max(kLeastText, width - m_nameColumns)) {}

    std::string row(const std::string& name, const std::string& text) const {
        const std::string start = "  " + name;
        const bool isShort = start.size() < m_nameColumns;
        return start +
               (isShort ? std::string(m_nameColumns - start.size(), ' ') : '\n' + std::string(m_nameColumns, ' ')) +
               text + '\n';
    }

    std::string rows(const char* title, const std::vector<const Option*>& options) const {
        if (options.empty()) return "";
        std::string text = std::string("\n") + title + ":\n";
        for (const Option* option : options) text += row(headOf(*option), description(option->help));
        return text;
    }

private:
    // Its further lines start below its first one.
    std::string description(const std::string& help) const {
        const std::string lines = wrapped(help, m_textColumns);
        std::string text;
        for (const char c : lines.substr(0, lines.size() - 1)) {
            text += c;
            if (c == '\n') text.append(m_nameColumns, ' ');
        }
        return text;
    }

    std::size_t m_nameColumns;
    std::size_t m_textColumns;
};

}  // namespace

std::string helpText(const Command& command, const std::string& call, std::size_t width) {
    const Table table(width);
    std::string text = command.summary + "\nUsage: " + call + " [OPTIONS]";
    for (const Option* argument : argumentsOf(command)) text += ' ' + usageOf(*argument);
    text += command.commands.empty() ? "\n" : " [SUBCOMMAND]\n";
    text += table.rows("Positionals", argumentsOf(command)) + table.rows("Options", namedOptionsOf(command));
    if (!command.commands.empty()) text += "\nSubcommands:\n";
    for (const Command* shown : shownCommands(command)) text += table.row(shown->name, shown->summary);
    return text + '\n' + footerText(command.footer, width);
}

}  // namespace vexa::runner
