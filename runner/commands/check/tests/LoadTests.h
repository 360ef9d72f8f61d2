#pragma once

#include "commands/check/trial/Trial.h"

namespace vexa::runner {

/// Loads the add-on, and unloads it.
Verdict load(Trial& trial);
/// Does so many times, and looks at what stays behind.
Verdict loadAndUnload(Trial& trial);

}  // namespace vexa::runner
