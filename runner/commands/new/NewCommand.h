#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `new` writes the project of a new add-on.
Command newCommand();

}  // namespace vexa::runner
