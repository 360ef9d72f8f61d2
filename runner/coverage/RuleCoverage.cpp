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

bool hasCommand(const TracedRun& run, bool succeeded) {
    return std::any_of(run.entries.begin(), run.entries.end(), [=](const TracedEntry& entry) {
        return entry.kind == "command" && entry.succeeded == succeeded && run.spans[entry.span].end;
    });
}

bool hasSecondThread(const TracedRun& run) {
    return std::count_if(run.tracks.begin(), run.tracks.end(),
                         [](const TracedTrack& track) { return !track.isScope; }) > 1;
}

bool hasRecording(const TracedRun& run) { return std::any_of(run.spans.begin(), run.spans.end(), isRecording); }

RunEvents eventsOf(const TracedRun& run) {
    RunEvents events;
    for (const TracedSpan& span : run.spans) {
        if (span.kind == Kind_e::Call) events.functions.insert(span.name);
    }
    events.hasEntry = !run.entries.empty();
    events.hasAcceptedCommand = hasCommand(run, true);
    events.hasFailedCommand = hasCommand(run, false);
    events.hasSecondThread = hasSecondThread(run);
    events.hasTimeLimit = run.hasTimeLimit;
    events.isReplayed = run.isStrict && hasRecording(run);
    return events;
}

std::size_t findingsOf(const TracedRun& run, const std::string& rule) {
    return static_cast<std::size_t>(std::count_if(run.findings.begin(), run.findings.end(),
                                                  [&](const TracedFinding& finding) { return finding.rule == rule; }));
}

Coverage_e coverageOf(const TracedRun& run, const RunEvents& events, const Rule& rule, std::size_t findings) {
    if (findings != 0) return Coverage_e::Broken;
    if (contains(run.suppressed, rule.name)) return Coverage_e::Suppressed;
    return isTouched(events, *standin::findTrigger(rule.name)) ? Coverage_e::Touched : Coverage_e::Untouched;
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

std::vector<RuleCoverage> coverageOf(const TracedRun& run) {
    const RunEvents events = eventsOf(run);
    std::vector<RuleCoverage> all;
    for (const Rule& rule : standin::rules()) {
        const std::size_t findings = findingsOf(run, rule.name);
        const Coverage_e coverage = coverageOf(run, events, rule, findings);
        all.push_back({&rule, coverage, whatTouches(rule.name), findings});
    }
    return all;
}

}  // namespace vexa::runner
