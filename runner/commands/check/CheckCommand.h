#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `check` runs the tests of checkTests() on an add-on.
Command checkCommand();

}  // namespace vexa::runner
