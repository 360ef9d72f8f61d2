#include "trace/TracedRunBuilder.h"

#include <algorithm>

namespace vexa::runner {

void TracedRunBuilder::runBegan(const TracedFacts& facts) { static_cast<TracedFacts&>(m_run) = facts; }

void TracedRunBuilder::trackChanged(std::size_t track, const TracedTrack& facts) {
    if (track == m_run.tracks.size()) m_run.tracks.emplace_back();
    m_run.tracks[track] = facts;
}

void TracedRunBuilder::spanBegan(std::size_t, const TracedSpan& span, const TracedEntry* entry) {
    m_run.spans.push_back(span);
    if (entry != nullptr) m_run.entries.push_back(*entry);
}

void TracedRunBuilder::spanEnded(std::size_t index, const TracedSpan& span, const TracedEntry* entry) {
    m_run.spans[index] = span;
    if (entry == nullptr) return;
    const auto isBefore = [](const TracedEntry& one, std::size_t other) { return one.span < other; };
    *std::lower_bound(m_run.entries.begin(), m_run.entries.end(), index, isBefore) = *entry;
}

void TracedRunBuilder::findingMade(const TracedFinding& finding) { m_run.findings.push_back(finding); }

void TracedRunBuilder::crashed(const TracedCrash& crash) { m_run.crashes.push_back(crash); }

void TracedRunBuilder::percentChanged(std::int64_t time, std::int64_t percent) {
    m_run.percents.emplace_back(time, percent);
}

void TracedRunBuilder::runEnded(std::int64_t end, const std::optional<TracedOutcome>& outcome) {
    m_run.end = end;
    m_run.outcome = outcome;
}

}  // namespace vexa::runner
