#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <queue>
#include <set>
#include <utility>
#include <vector>

#include "trace/TracedRun.h"

namespace vexa::runner {

/// Chooses the spans that the page shows exactly: the first ones of the run, the slowest ones, those around findings,
/// and those that are asked for. Their number is bounded, and long texts are cut.
class KeptSpans {
public:
    void began(std::size_t index) { m_open.push_back(index); }
    void ended(std::size_t index, const TracedSpan& span);
    /// Keeps the last spans, those that are open, and the next ones.
    void findingMade();
    void keep(std::size_t index, const TracedSpan& span);

    /// Returns the chosen spans, in the order of their starts. Call it once, at the end.
    std::map<std::size_t, TracedSpan> take();

private:
    using Slow = std::pair<std::int64_t, std::size_t>;  // duration and index

    void noteSlow(std::size_t index, const TracedSpan& span);
    void noteRecent(std::size_t index, const TracedSpan& span);

    std::vector<std::size_t> m_open;
    std::set<std::size_t> m_wanted;  // open spans that a finding was about
    std::map<std::size_t, TracedSpan> m_kept;
    std::map<std::size_t, TracedSpan> m_slow;
    std::priority_queue<Slow, std::vector<Slow>, std::greater<>> m_durations;  // of m_slow, the shortest first
    std::vector<std::pair<std::size_t, TracedSpan>> m_recent;                  // a ring
    std::size_t m_nextRecent = 0;
    std::size_t m_followers = 0;  // how many of the next spans to keep
    std::size_t m_findings = 0;
};

}  // namespace vexa::runner
