#pragma once

#include "options/Command.h"

namespace vexa::runner {

/// `report` makes a page for browsers from a trace.
Command reportCommand();

}  // namespace vexa::runner
