#include "language/LineFormat.h"

#include "language/LineCheck.h"
#include "language/MacroLine.h"
#include "language/ValueText.h"

namespace vexa::runner {
namespace {

std::string_view withoutBlanksAtEnd(std::string_view line) {
    return line.substr(0, line.find_last_not_of(" \t") + 1);  // past the last position is 0
}

std::string commandText(std::string_view line, const MacroLine& parts) {
    std::string text(line.substr(0, parts.id.end));  // with the blanks at the start
    text += ' ';
    text += textOf(parts.word, line);
    for (const WrittenOption& option : parts.options) {
        const std::string name(textOf(option.name, line));
        const std::string value(textOf(option.value, line));
        text += ' ' + assignment(name, value, parts.command->kind);
    }
    return text;
}

}  // namespace

std::string formattedLine(std::string_view line, const Descriptions& descriptions) {
    if (!checkLine(line, descriptions).empty()) return std::string(line);
    const MacroLine parts = parseLine(line, descriptions);
    return parts.isCommand() ? commandText(line, parts) : std::string(withoutBlanksAtEnd(line));
}

}  // namespace vexa::runner
