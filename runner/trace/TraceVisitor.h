#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "trace/TracedRun.h"

namespace vexa::runner {

/// Receives the events of a trace in their order, from TraceInput::visit(). So a program can read a trace that is
/// larger than memory.
///
/// The references are valid during the call.
class TraceVisitorInterface {
public:
    virtual ~TraceVisitorInterface() = default;

    /// Called first.
    virtual void runBegan(const TracedFacts& facts) = 0;
    /// A track is new, or its name or kind changed. \p track counts from 0.
    virtual void trackChanged(std::size_t track, const TracedTrack& facts) = 0;
    /// A span started. \p index counts from 0. Its end and its result are still empty.
    /// \param entry the facts of an entry, null for other spans
    virtual void spanBegan(std::size_t index, const TracedSpan& span, const TracedEntry* entry) = 0;
    /// The span ended. A span of a run that was cut off ends, too, but its end is empty. The inner spans of a track end
    /// first.
    virtual void spanEnded(std::size_t index, const TracedSpan& span, const TracedEntry* entry) = 0;
    virtual void findingMade(const TracedFinding& finding) = 0;
    virtual void crashed(const TracedCrash& crash) = 0;
    virtual void percentChanged(std::int64_t time, std::int64_t percent) = 0;
    /// Called last. \p outcome is empty if the trace ends before the run.
    virtual void runEnded(std::int64_t end, const std::optional<TracedOutcome>& outcome) = 0;
};

}  // namespace vexa::runner
