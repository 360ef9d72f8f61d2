#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "commands/report/FlameTree.h"
#include "commands/report/KeptEntries.h"
#include "commands/report/TimeBins.h"
#include "coverage/RuleCoverage.h"
#include "trace/TracedRun.h"

namespace vexa::runner {

/// Spans by their numbers in the run.
using NumberedSpans = std::map<std::size_t, TracedSpan>;

/// Returns the spans as columns of numbers. Each text is in them once.
nlohmann::ordered_json spansJson(const NumberedSpans& spans);

/// Returns the intervals of the rows whose spans are not all in \p spans.
/// \param counts the number of spans of each row
nlohmann::ordered_json binsJson(const TimeBins& bins, const NumberedSpans& spans,
                                const std::map<TimeBins::Row, std::size_t>& counts);

/// Returns the largest nodes, the root first, each after its parent. The time of a node includes that of its children.
nlohmann::ordered_json flameJson(const FlameTree& flame);

/// Returns the list of entries; each names the row of its span in spansJson().
nlohmann::ordered_json entriesJson(const KeptEntries& entries, const NumberedSpans& spans);

/// Returns the sums of the entries by name.
nlohmann::ordered_json totalsJson(const KeptEntries& entries);

nlohmann::ordered_json rulesJson(const RuleCoverageCollector& rules);

/// Returns the text argument of a call at \p index; empty for a null pointer.
std::string textArgument(const TracedSpan& call, std::size_t index);

}  // namespace vexa::runner
