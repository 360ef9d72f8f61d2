#pragma once

#include <algorithm>
#include <map>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "commands/report/FindingList.h"
#include "commands/report/FlameTree.h"
#include "commands/report/KeptEntries.h"
#include "commands/report/KeptSpans.h"
#include "commands/report/PercentSteps.h"
#include "commands/report/TimeBins.h"
#include "coverage/RuleCoverage.h"
#include "trace/TraceVisitor.h"

namespace vexa::runner {

/// Makes the data of the report's page from the events of a trace. Its memory and the size of the data are bounded,
/// whatever the trace: the counts and sums are those of the whole run, and some spans are exact.
class PageData : public TraceVisitorInterface {
public:
    PageData();

    void runBegan(const TracedFacts& facts) override;
    void trackChanged(std::size_t track, const TracedTrack& facts) override;
    void spanBegan(std::size_t index, const TracedSpan& span, const TracedEntry* entry) override;
    void spanEnded(std::size_t index, const TracedSpan& span, const TracedEntry* entry) override;
    void findingMade(const TracedFinding& finding) override;
    void crashed(const TracedCrash& crash) override;
    void percentChanged(std::int64_t time, std::int64_t percent) override;
    void runEnded(std::int64_t end, const std::optional<TracedOutcome>& outcome) override;

    /// Returns all data. Call it once, at the end.
    nlohmann::ordered_json take();
    /// Returns the data that the page of another run compares with its own.
    nlohmann::ordered_json summary() const;

private:
    struct Tally {
        std::size_t calls = 0;
        double time = 0;  // a double, because the sum over all threads may not fit into an integer
    };
    /// The texts that calls passed to a function.
    struct Passed {
        std::size_t count = 0;
        std::vector<std::pair<std::size_t, std::vector<std::string>>> first;  // numbers of calls, and the texts
    };

    static bool isDrawn(const TracedSpan& span);
    void noteTime(std::int64_t time) { m_end = std::max(m_end, time); }
    void noteCall(const TracedSpan& call);
    static void notePassed(Passed& passed, const TracedSpan& call, std::size_t texts);
    const std::string& trackNameOf(const TracedSpan& span) const;
    bool isCutOff() const;
    void addCrash(nlohmann::ordered_json& ending) const;
    nlohmann::ordered_json ending() const;
    nlohmann::ordered_json findings() const;
    nlohmann::ordered_json counts() const;
    nlohmann::ordered_json functions() const;

    TracedFacts m_facts;
    std::optional<TracedOutcome> m_outcome;
    std::optional<TracedCrash> m_crash;  // the first one
    std::int64_t m_end = 0;              // the time of the last event so far
    std::size_t m_trackCount = 0;
    std::vector<TracedTrack> m_tracks;  // those that are drawn
    std::size_t m_spanCount = 0;
    std::map<std::string, Tally, std::less<>> m_tallies;
    std::map<TimeBins::Row, std::size_t> m_rowCounts;
    std::optional<TracedSpan> m_unfinishedCall;  // the last one that did not return
    Passed m_recorded;
    Passed m_dialogs;
    KeptSpans m_spans;
    KeptEntries m_entries;
    FindingList m_findings;
    PercentSteps m_percents;
    TimeBins m_bins;
    FlameTree m_flame;
    RuleCoverageCollector m_rules;
};

}  // namespace vexa::runner
