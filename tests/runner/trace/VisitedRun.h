#pragma once

#include <algorithm>
#include <map>
#include <vector>

#include "trace/TraceVisitor.h"

namespace vexa::runner {

/// Passes a run to \p visitor as a trace would. A span ends before the next span of its track that is not deeper.
class VisitedRun {
public:
    VisitedRun(const TracedRun& run, TraceVisitorInterface& visitor) : m_run(run), m_visitor(visitor) {
        visitor.runBegan(run);
        for (std::size_t i = 0; i < std::max<std::size_t>(run.tracks.size(), 1); ++i) {
            visitor.trackChanged(i, run.tracks.empty() ? TracedTrack{"thread 1", false} : run.tracks[i]);
        }
        for (std::size_t i = 0; i < run.spans.size(); ++i) begin(i);
        for (auto& [track, open] : m_open) endFrom(open, 0);
        for (const TracedFinding& finding : run.findings) visitor.findingMade(finding);
        for (const TracedCrash& crash : run.crashes) visitor.crashed(crash);
        for (const auto& [time, percent] : run.percents) visitor.percentChanged(time, percent);
        visitor.runEnded(run.end, run.outcome);
    }

private:
    void begin(std::size_t index) {
        const TracedSpan& span = m_run.spans[index];
        auto& open = m_open[span.track];
        endFrom(open, span.depth);
        open.push_back(index);
        m_visitor.spanBegan(index, span, entryOf(index));
    }

    void endFrom(std::vector<std::size_t>& open, std::size_t depth) {
        for (; open.size() > depth; open.pop_back()) {
            m_visitor.spanEnded(open.back(), m_run.spans[open.back()], entryOf(open.back()));
        }
    }

    const TracedEntry* entryOf(std::size_t span) const {
        const auto found = std::find_if(m_run.entries.begin(), m_run.entries.end(),
                                        [=](const TracedEntry& entry) { return entry.span == span; });
        return found == m_run.entries.end() ? nullptr : &*found;
    }

    const TracedRun& m_run;
    TraceVisitorInterface& m_visitor;
    std::map<std::size_t, std::vector<std::size_t>> m_open;
};

}  // namespace vexa::runner
