#pragma once

#include <nlohmann/json_fwd.hpp>

#include "commands/report/TracedRun.h"

namespace vexa::runner {

/// The data of the report's page. Spans are columns of numbers, and each text is in it once, so that a browser can read
/// very many spans.
nlohmann::ordered_json pageData(const TracedRun& run);

}  // namespace vexa::runner
