#pragma once

#include <string>

#include "commands/report/TracedRun.h"

namespace vexa::runner {

/// A page for browsers that shows \p run: one file that needs no other, and no network.
std::string reportPage(const TracedRun& run);

}  // namespace vexa::runner
