#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `list` prints a table of add-ons in the order given: id, title, file.
Command listCommand();

}  // namespace vexa::runner
