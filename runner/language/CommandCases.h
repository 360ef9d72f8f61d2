#pragma once

#include <string>
#include <vector>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// Texts of a command that must all have the same outcome by its description.
struct CommandCase {
    std::string what;                ///< for example "TIMES at its maximum"
    std::vector<std::string> texts;  ///< commands without the add-on's id, at least one
};

/// Returns commands that the add-on accepts if the description of \p command is right. Of each case it accepts at least
/// one text: the texts have the option in different surroundings, because some options exclude or need others.
///
/// Values of options come from the examples, the default and the limits. An option without all of these gets a value
/// such as 1, 'text' or [1].
/// \param addOn has \p command.
std::vector<CommandCase> acceptedCases(const AddOnDescription& addOn, const CommandDescription& command);

/// Returns commands that the add-on refuses if the description of \p command is right, each wrong in one way: without a
/// required option, with an unknown option, with a value of another type or outside of the limits. Each case has one
/// text.
std::vector<CommandCase> refusedCases(const AddOnDescription& addOn, const CommandDescription& command);

/// A command with an integer that an Int32 cannot hold.
struct LargeInteger {
    std::string option;
    std::string value;
    std::string text;  ///< the command without the add-on's id
};

/// Returns a command for each Int64 of \p command. The add-on may refuse it. If it records another value, it reads the
/// option as an Int32.
std::vector<LargeInteger> largeIntegers(const AddOnDescription& addOn, const CommandDescription& command);

/// Returns \p command with only its required options.
std::string leastCommand(const AddOnDescription& addOn, const CommandDescription& command);

}  // namespace vexa::runner
