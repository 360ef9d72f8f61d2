#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `run` runs macro files. The standard output is left to the add-ons. SIGINT stops the command that runs, and no other
/// starts; what was recorded is written all the same.
Command runCommand();

}  // namespace vexa::runner
