#pragma once

#include <string>
#include <vector>

#include "options/Command.h"

namespace vexa::runner {

/// Reads a command line: puts the values of the options where they go.
///
/// \param program    the program, whose commands are to live until what is returned has run
/// \param arguments  the words of the command line, without the name of the program
/// \return what the user asks for: the command, the help or the version. Without a command it is the help as an error.
/// \throws UsageError when the command line is refused.
Action parse(const Command& program, const std::vector<std::string>& arguments);

}  // namespace vexa::runner
