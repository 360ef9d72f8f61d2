#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "trace/TracedRun.h"

namespace vexa::runner {

/// The start or the end of a host call or of a scope, as an event of a trace has it.
struct SpanEdge {
    TracedSpan::Kind_e kind = TracedSpan::Kind_e::Call;  ///< Call or Scope
    bool begins = false;
    std::string name;
    std::int64_t thread = 0;  ///< the number of its track in the trace
    double time = 0;          ///< in microseconds, of the clock of the trace
    std::size_t number = 0;   ///< of a call that starts
    std::string text;         ///< the arguments of a start, the result of a call that ended
};

/// Reads the line of a SpanEdge, without the comma at its end, if the line has the form in which EventTrace writes
/// nearly all events. Reading it as JSON gives the same, and takes many times as long.
/// \return false if the line has any other form. It may be such an event nevertheless. \p edge is then undefined.
bool scanSpanEdge(std::string_view line, SpanEdge& edge);

}  // namespace vexa::runner
