#pragma once

#include <string>
#include <vector>

#include "commands/check/trial/Trial.h"
#include "formats/CommandDescription.h"

namespace vexa::runner {

/// Returns the options of \p command that its description lacks, as far as they can be found.
///
/// The function tries the words in capitals that the add-on's file contains, as options with values of several types.
/// For a name that the add-on does not know, its message is the same whatever the value is. If the message depends on
/// the value, or if the command succeeds, the add-on knows the option. If the message for an invented name depends on
/// the value, too, the function returns nothing.
/// \param before commands that have to run first
/// \param least  the command with only its required options
std::vector<std::string> undescribedOptions(Trial& trial, const AddOnDescription& addOn,
                                            const CommandDescription& command, const std::vector<MacroCommand>& before,
                                            const std::string& least);

/// Returns the commands that the description of \p addOn lacks, as far as they can be found in the same way: the
/// function tries the words as commands with several texts after them.
std::vector<std::string> undescribedCommands(Trial& trial, const AddOnDescription& addOn);

}  // namespace vexa::runner
