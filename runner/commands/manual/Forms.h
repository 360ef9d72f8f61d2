#pragma once

#include <string>

#include "options/Command.h"
#include "text/Joined.h"

namespace vexa::runner {

/// Returns the manual page of \p program and its commands, for man.
std::string manPage(const Command& program);

// Return scripts with which shells complete the command line of a program: commands, options, rules, tests and files.

std::string bashCompletion(const Command& program);
std::string zshCompletion(const Command& program);
std::string fishCompletion(const Command& program);

/// Replaces the only \p placeholder in \p text.
inline void fillIn(std::string& text, const std::string& placeholder, const std::string& with) {
    text.replace(text.find(placeholder), placeholder.size(), with);
}

}  // namespace vexa::runner
