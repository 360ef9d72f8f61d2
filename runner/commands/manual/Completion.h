#pragma once

#include <string>
#include <vector>

#include "options/Command.h"

namespace vexa::runner {

// The scripts by which shells complete the command line of a program: commands, options, rules, tests and files.

std::string bashCompletion(const Command& program);
std::string zshCompletion(const Command& program);
std::string fishCompletion(const Command& program);

/// The names of the commands that are completed.
std::vector<std::string> completedCommands(const Command& program);

/// "a b c", with a blank for \p between
std::string joined(const std::vector<std::string>& words, const std::string& between);

/// Puts \p with in place of the only \p placeholder in \p text.
void fillIn(std::string& text, const std::string& placeholder, const std::string& with);

}  // namespace vexa::runner
