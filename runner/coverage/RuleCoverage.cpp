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

bool hasCall(const TracedRun& run, const RuleTrigger& trigger) {
    return std::any_of(run.spans.begin(), run.spans.end(), [&](const TracedSpan& span) {
        return span.kind == Kind_e::Call && contains(trigger.functions, span.name);
    });
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

bool isTouched(const TracedRun& run, const RuleTrigger& trigger) {
    switch (trigger.kind) {
        case RuleTrigger_e::Call: return hasCall(run, trigger);
        case RuleTrigger_e::Entry: return !run.entries.empty();
        case RuleTrigger_e::AcceptedCommand: return hasCommand(run, true);
        case RuleTrigger_e::FailedCommand: return hasCommand(run, false);
        case RuleTrigger_e::SecondThread: return hasSecondThread(run);
        case RuleTrigger_e::TimeLimit: return run.hasTimeLimit;
        case RuleTrigger_e::Replay: return run.isStrict && hasRecording(run);
    }
    return false;
}

std::size_t findingsOf(const TracedRun& run, const std::string& rule) {
    return static_cast<std::size_t>(std::count_if(run.findings.begin(), run.findings.end(),
                                                  [&](const TracedFinding& finding) { return finding.rule == rule; }));
}

Coverage_e coverageOf(const TracedRun& run, const Rule& rule, const RuleTrigger& trigger, std::size_t findings) {
    if (findings != 0) return Coverage_e::Broken;
    if (contains(run.suppressed, rule.name)) return Coverage_e::Suppressed;
    return isTouched(run, trigger) ? Coverage_e::Touched : Coverage_e::Untouched;
}

}  // namespace

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
    std::vector<RuleCoverage> all;
    for (const Rule& rule : standin::rules()) {
        const std::size_t findings = findingsOf(run, rule.name);
        const Coverage_e coverage = coverageOf(run, rule, *standin::findTrigger(rule.name), findings);
        all.push_back({&rule, coverage, whatTouches(rule.name), findings});
    }
    return all;
}

}  // namespace vexa::runner
