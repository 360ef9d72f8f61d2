#pragma once

#include <string>
#include <vector>

#include "options/Command.h"

namespace vexa::runner {

/// Reads a command line and puts the values of the options into their destinations.
///
/// \param program    the program; it must live until the returned action has run
/// \param arguments  the words of the command line, without the name of the program
/// \return an action that runs the command, or prints the help or the version. Without a command, the action prints the
///         help as an error.
/// \throws UsageError if the command line is wrong.
Action parse(const Command& program, const std::vector<std::string>& arguments);

}  // namespace vexa::runner
