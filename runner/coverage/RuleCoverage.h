#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "trace/TracedRun.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {

/// The events of a run that make the stand-in check rules.
struct RunEvents {
    std::set<std::string, std::less<>> functions;  ///< the host functions that were called
    bool hasEntry = false;                         ///< the host called an add-on
    bool hasAcceptedCommand = false;
    bool hasFailedCommand = false;
    bool hasSecondThread = false;  ///< of the host or of an add-on
    bool hasTimeLimit = false;
    bool isReplayed = false;  ///< a recorded command was run again
};

/// Returns true if \p events make the stand-in check a rule with \p trigger.
bool isTouched(const RunEvents& events, const standin::RuleTrigger& trigger);

/// How far a run tested a rule.
enum class Coverage_e {
    Broken,      ///< there is a finding
    Touched,     ///< the event of the rule happened, and was checked
    Untouched,   ///< the event of the rule did not happen, so the rule was not tested
    Suppressed,  ///< the user suppressed the rule
};

/// A rule and its coverage by a run.
struct RuleCoverage {
    const standin::Rule* rule = nullptr;
    Coverage_e coverage = Coverage_e::Untouched;
    std::string touchedBy;     ///< the result of whatTouches()
    std::size_t findings = 0;  ///< how many findings there are
};

/// Finds the coverage of every rule of rules() from the events of a trace. A rule is touched if a function that it is
/// about was called, or if its event happened. The run may not have tried every way to break a touched rule.
class RuleCoverageCollector {
public:
    void runBegan(const TracedFacts& facts);
    void trackChanged(std::size_t track, const TracedTrack& facts);
    /// \param entry the facts of an entry, null for other spans
    void spanEnded(const TracedSpan& span, const TracedEntry* entry);
    void findingMade(const std::string& rule) { ++m_findings[rule]; }

    std::vector<RuleCoverage> coverage() const;

private:
    RunEvents m_events;
    bool m_isStrict = false;
    std::vector<std::string> m_suppressed;
    std::set<std::size_t> m_threads;  // tracks
    std::map<std::string, std::size_t> m_findings;
};

/// Describes for the user what touches \p rule: a list of functions, or an event. Empty for an unknown rule.
std::string whatTouches(const std::string& rule);

}  // namespace vexa::runner
