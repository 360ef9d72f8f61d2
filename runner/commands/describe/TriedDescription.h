#pragma once

#include <functional>
#include <string>
#include <vector>

#include "formats/CommandDescription.h"

namespace vexa::runner {

/// The outcome of a command that was tried on an add-on.
struct TriedCommand {
    bool isAccepted = false;
    std::vector<std::string> recorded = {};  ///< lines with the add-on's id
};

/// Runs commands of an add-on, without its id, in a new session. All but the last one prepare it.
/// \return the outcome of the last command; refused if an earlier one was refused.
using TryCommands = std::function<TriedCommand(const std::vector<std::string>&)>;

/// Improves a guessed description by what the add-on accepts: which commands have to run first, which options are
/// required, whether an integer may have a fraction, is an Int32, may be 0 or negative, and whether a text or a set may
/// be empty. The help of each option says what is guessed. An example that the add-on refuses, even after the accepted
/// commands before it, is removed.
///
/// \param commands the commands of the macros, in their order.
void improve(AddOnDescription& description, const std::vector<std::string>& commands, const TryCommands& tryCommands);

}  // namespace vexa::runner
