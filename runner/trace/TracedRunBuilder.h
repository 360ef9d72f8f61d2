#pragma once

#include "trace/TraceVisitor.h"

namespace vexa::runner {

/// Collects a whole trace in memory.
class TracedRunBuilder : public TraceVisitorInterface {
public:
    void runBegan(const TracedFacts& facts) override;
    void trackChanged(std::size_t track, const TracedTrack& facts) override;
    void spanBegan(std::size_t index, const TracedSpan& span, const TracedEntry* entry) override;
    void spanEnded(std::size_t index, const TracedSpan& span, const TracedEntry* entry) override;
    void findingMade(const TracedFinding& finding) override;
    void crashed(const TracedCrash& crash) override;
    void percentChanged(std::int64_t time, std::int64_t percent) override;
    void runEnded(std::int64_t end, const std::optional<TracedOutcome>& outcome) override;

    /// Call it once, after the trace was read.
    TracedRun take() { return std::move(m_run); }

private:
    TracedRun m_run;
};

}  // namespace vexa::runner
