#pragma once

#include <nlohmann/json_fwd.hpp>

#include "commands/report/TracedRun.h"

namespace vexa::runner {

/// What the report's page is told of \p run. Spans are columns of numbers, with each text once, so that a browser reads
/// a hundred thousand of them at once.
nlohmann::ordered_json pageData(const TracedRun& run);

}  // namespace vexa::runner
