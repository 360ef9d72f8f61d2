#include "coverage/RuleCoverage.h"

#include <algorithm>
#include <string_view>

#include "text/Joined.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

using standin::Rule;
using standin::RuleTrigger;
using standin::RuleTrigger_e;
using Kind_e = TracedSpan::Kind_e;

template <class Names>
bool contains(const Names& names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

}  // namespace

bool isTouched(const RunEvents& events, const RuleTrigger& trigger) {
    switch (trigger.kind) {
        case RuleTrigger_e::Call:
            return std::any_of(trigger.functions.begin(), trigger.functions.end(),
                               [&](const char* function) { return events.functions.count(function) != 0; });
        case RuleTrigger_e::Entry: return events.hasEntry;
        case RuleTrigger_e::AcceptedCommand: return events.hasAcceptedCommand;
        case RuleTrigger_e::FailedCommand: return events.hasFailedCommand;
        case RuleTrigger_e::SecondThread: return events.hasSecondThread;
        case RuleTrigger_e::TimeLimit: return events.hasTimeLimit;
        case RuleTrigger_e::Replay: return events.isReplayed;
    }
    return false;
}

std::string whatTouches(const std::string& rule) {
    const RuleTrigger* const trigger = standin::findTrigger(rule);
    if (trigger == nullptr) return "";
    switch (trigger->kind) {
        case RuleTrigger_e::Call: return joined(trigger->functions, ", ");
        case RuleTrigger_e::Entry: return "a call of an add-on";
        case RuleTrigger_e::AcceptedCommand: return "a command that succeeds";
        case RuleTrigger_e::FailedCommand: return "a command that fails";
        case RuleTrigger_e::SecondThread: return "a host call on a second thread";
        case RuleTrigger_e::TimeLimit: return "a run with --timeout";
        case RuleTrigger_e::Replay: return "a run with --strict, and a recorded command";
    }
    return "";
}

void RuleCoverageCollector::runBegan(const TracedFacts& facts) {
    m_events.hasTimeLimit = facts.hasTimeLimit;
    m_isStrict = facts.isStrict;
    m_suppressed = facts.suppressed;
}

void RuleCoverageCollector::trackChanged(std::size_t track, const TracedTrack& facts) {
    if (facts.isScope) {
        m_threads.erase(track);
    } else {
        m_threads.insert(track);
    }
    m_events.hasSecondThread = m_threads.size() > 1;
}

void RuleCoverageCollector::spanEnded(const TracedSpan& span, const TracedEntry* entry) {
    if (span.kind == Kind_e::Call && m_events.functions.count(span.name) == 0) m_events.functions.insert(span.name);
    if (m_isStrict && isRecording(span)) m_events.isReplayed = true;
    if (entry == nullptr) return;
    m_events.hasEntry = true;
    if (entry->kind != "command" || !span.end) return;
    (entry->succeeded ? m_events.hasAcceptedCommand : m_events.hasFailedCommand) = true;
}

std::vector<RuleCoverage> RuleCoverageCollector::coverage() const {
    std::vector<RuleCoverage> all;
    for (const Rule& rule : standin::rules()) {
        const auto findings = m_findings.find(rule.name);
        const std::size_t count = findings == m_findings.end() ? 0 : findings->second;
        Coverage_e coverage = Coverage_e::Untouched;
        if (count != 0) {
            coverage = Coverage_e::Broken;
        } else if (contains(m_suppressed, rule.name)) {
            coverage = Coverage_e::Suppressed;
        } else if (isTouched(m_events, *standin::findTrigger(rule.name))) {
            coverage = Coverage_e::Touched;
        }
        all.push_back({&rule, coverage, whatTouches(rule.name), count});
    }
    return all;
}

}  // namespace vexa::runner
