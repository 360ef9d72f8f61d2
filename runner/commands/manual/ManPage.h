#pragma once

#include <string>

#include "options/Command.h"

namespace vexa::runner {

/// The manual page of \p program, with all its commands, for man.
std::string manPage(const Command& program);

}  // namespace vexa::runner
