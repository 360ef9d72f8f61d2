#include "contract/MacroLine.h"

#include <algorithm>

namespace vexa::standin {
namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

bool hasLineBreak(std::string_view text) { return std::any_of(text.begin(), text.end(), isLineBreak); }

bool isBlank(std::string_view text) { return text.find_first_not_of(kWhiteSpace) == std::string_view::npos; }

}  // namespace

bool isLineBreak(char c) { return c == '\n' || c == '\r'; }

bool hasWhiteSpace(std::string_view text) { return text.find_first_of(kWhiteSpace) != std::string_view::npos; }

std::string_view whyNoMacroLine(std::string_view addOnId, std::string_view command) {
    if (addOnId.empty()) return "the add-on's id is empty";
    if (hasWhiteSpace(addOnId)) return "the add-on's id has white space in it";
    if (addOnId.front() == '#') return "the add-on's id begins with '#', as a comment does";
    if (isBlank(command)) return "its text is blank";
    if (hasLineBreak(command)) return "its text has a line break in it";
    if (command.front() == ' ' || command.front() == '\t') return "its text begins with a blank";
    return "";
}

}  // namespace vexa::standin
