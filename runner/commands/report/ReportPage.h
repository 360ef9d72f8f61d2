#pragma once

#include <string>

#include "trace/TracedRun.h"

namespace vexa::runner {

/// Makes an HTML page that shows \p run. It needs no other file and no network.
std::string reportPage(const TracedRun& run);

}  // namespace vexa::runner
