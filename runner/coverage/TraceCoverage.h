#pragma once

#include "coverage/Coverage.h"
#include "trace/TracedRun.h"

namespace vexa::runner {

/// Returns the coverage of a run that was traced.
Coverage coverageOfTrace(const TracedRun& run);

}  // namespace vexa::runner
