#pragma once

#include <nlohmann/json_fwd.hpp>

#include "trace/TracedRun.h"

namespace vexa::runner {

/// Returns the data of the report's page. Spans are columns of numbers, and each text is stored once, so that a browser
/// can load very many spans.
nlohmann::ordered_json pageData(const TracedRun& run);

}  // namespace vexa::runner
