/// \file
/// What the stand-in asks of texts that add-ons hand over.
#pragma once

#include <algorithm>
#include <string_view>

namespace vexa::standin {

inline bool isNullOrEmpty(const char* text) { return text == nullptr || *text == '\0'; }

inline const char* orEmpty(const char* text) { return text == nullptr ? "" : text; }

inline bool isLineBreak(char c) { return c == '\n' || c == '\r'; }

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

inline bool hasWhiteSpace(std::string_view text) { return text.find_first_of(kWhiteSpace) != std::string_view::npos; }

inline bool hasLineBreak(std::string_view text) { return std::any_of(text.begin(), text.end(), isLineBreak); }

inline bool isBlank(std::string_view text) { return text.find_first_not_of(kWhiteSpace) == std::string_view::npos; }

/// Why the line of a macro file that has \p addOnId, a blank and \p command would not be read as that command of that
/// add-on; empty when it would.
inline std::string_view whyNoMacroLine(std::string_view addOnId, std::string_view command) {
    if (addOnId.empty()) return "the add-on's id is empty";
    if (hasWhiteSpace(addOnId)) return "the add-on's id has white space in it";
    if (addOnId.front() == '#') return "the add-on's id begins with '#', as a comment does";
    if (isBlank(command)) return "its text is blank";
    if (hasLineBreak(command)) return "its text has a line break in it";
    if (command.front() == ' ' || command.front() == '\t') return "its text begins with a blank";
    return "";
}

}  // namespace vexa::standin
