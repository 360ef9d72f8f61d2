#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "options/ExitStatus.h"
#include "options/Option.h"

namespace vexa::runner {

/// Runs a command, and returns the exit status.
using Action = std::function<ExitStatus_e()>;

/// An option that the user gave, and its values as text.
using GivenOption = std::pair<std::string, std::vector<std::string>>;

/// A command of the program, or the program itself, which has commands. The parser, the help, the manual page and the
/// completions of shells read it.
struct Command {
    std::string name;
    std::string summary;
    std::string footer = {};           ///< the help shows it below the options: examples, exit statuses
    std::vector<Option> options = {};  ///< in the order of the help
    std::vector<Command> commands = {};
    bool isHidden = false;                  ///< true to omit the command in help, manual page and completions
    std::function<void()> check = nullptr;  ///< throws UsageError if options cannot be combined; may be empty
    Action run = nullptr;
    std::vector<GivenOption>* given = nullptr;  ///< receives the options that the user gave; may be null

    void add(Option option) { options.push_back(std::move(option)); }
};

/// Return the commands of \p program that are not hidden, and their names.
std::vector<const Command*> shownCommands(const Command& program);
std::vector<std::string> shownNames(const Command& program);

/// Return the positional arguments, and the other options, of \p command.
std::vector<const Option*> argumentsOf(const Command& command);
std::vector<const Option*> namedOptionsOf(const Command& command);

}  // namespace vexa::runner
