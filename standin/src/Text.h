/// \file
/// What the stand-in asks of texts that add-ons hand over.
#pragma once

#include <algorithm>
#include <string_view>

namespace vexa::standin {

inline bool isNullOrEmpty(const char* text) { return text == nullptr || *text == '\0'; }

inline const char* orEmpty(const char* text) { return text == nullptr ? "" : text; }

inline bool isLineBreak(char c) { return c == '\n' || c == '\r'; }

inline bool hasWhiteSpace(std::string_view text) { return text.find_first_of(" \t\n\v\f\r") != std::string_view::npos; }

inline bool hasLineBreak(std::string_view text) { return std::any_of(text.begin(), text.end(), isLineBreak); }

}  // namespace vexa::standin
