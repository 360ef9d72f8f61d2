#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `manual` prints what the build installs beside the program: the manual page, and the completions of shells. The help
/// does not show it.
/// \param program  what the manual is about; it must outlive what is returned
Command manualCommand(const Command& program);

}  // namespace vexa::runner
