#include "commands/report/RuleCoverage.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "text/StartsWith.h"
#include "vexastandin/HostFunctions.h"

namespace vexa::runner {
namespace {

using standin::HostFunctionInfo;
using standin::Rule;
using Kind_e = TracedSpan::Kind_e;

// What has to happen for a rule to be checked at all.
enum class Touch_e { Call, AnyEntry, AcceptedCommand, FailedCommand, SecondThread, Timeout, Replay };

struct Trigger {
    const char* rule;
    Touch_e touch;
    std::vector<std::string_view> functions;  // the beginnings of their names
};

const std::vector<Trigger>& triggers() {
    static const std::vector<std::string_view> deallocs = {"VexaUtilThreadMutexDealloc", "VexaUtilArgListDealloc",
                                                           "VexaUtilStringDealloc", "VexaUtilSetDealloc"};
    static const std::vector<std::string_view> takeHandles = {
        "VexaUtilLock",           "VexaUtilThreadMutexDealloc", "VexaUtilThreadMutexLock", "VexaUtilThreadMutexUn",
        "VexaUtilArgListDealloc", "VexaUtilArgListClear",       "VexaUtilArgListAppend",   "VexaUtilStyleGet",
        "VexaUtilStringDealloc",  "VexaUtilSetDealloc",         "VexaUtilSetInsert",       "VexaUtilSetNextRange"};
    static const std::vector<std::string_view> takeAddresses = {
        "VexaUtilThreadMutexDealloc", "VexaUtilMacroRecord",    "VexaUtilDataSetAddJournal", "VexaUtilStringAlloc",
        "VexaUtilStringDealloc",      "VexaUtilArgListDealloc", "VexaUtilArgListAppend",     "VexaUtilDialog",
        "VexaUtilSetDealloc",         "VexaUtilSetNextRange"};
    static const std::vector<Trigger> all = {
        {"unbalanced-lock", Touch_e::Call, {"VexaUtilLock"}},
        {"lock-identity", Touch_e::Call, {"VexaUtilLockFinish"}},
        {"unbalanced-auxdata", Touch_e::Call, {"VexaUtilAuxData"}},
        {"unbalanced-marking", Touch_e::Call, {"VexaUtilDataSetSuspendMarking"}},
        {"unbalanced-solution-time", Touch_e::Call, {"VexaUtilZoneSolutionTime"}},
        {"unbalanced-status", Touch_e::Call, {"VexaUtilStatusStart", "VexaUtilStatusFinish"}},
        {"status-started-twice", Touch_e::Call, {"VexaUtilStatusStart"}},
        {"status-not-started", Touch_e::Call, {"VexaUtilStatusCheck", "VexaUtilStatusSet"}},
        {"percent-out-of-range", Touch_e::Call, {"VexaUtilStatusCheck"}},
        {"percent-backwards", Touch_e::Call, {"VexaUtilStatusCheck"}},
        {"use-after-free", Touch_e::Call, deallocs},
        {"double-free", Touch_e::Call, deallocs},
        {"foreign-handle", Touch_e::Call, takeHandles},
        {"null-handle", Touch_e::Call, takeHandles},
        {"null-address", Touch_e::Call, takeAddresses},
        {"leaked-arglist", Touch_e::Call, {"VexaUtilArgListAlloc"}},
        {"leaked-string", Touch_e::Call, {"VexaUtilStringAlloc"}},
        {"leaked-mutex", Touch_e::Call, {"VexaUtilThreadMutexAlloc"}},
        {"leaked-set", Touch_e::Call, {"VexaUtilSetAlloc"}},
        {"mutex-not-held", Touch_e::Call, {"VexaUtilThreadMutexUnlock"}},
        {"mutex-locked-twice", Touch_e::Call, {"VexaUtilThreadMutexLock"}},
        {"mutex-freed-locked", Touch_e::Call, {"VexaUtilThreadMutexDealloc"}},
        {"mutex-left-locked", Touch_e::Call, {"VexaUtilThreadMutexLock"}},
        {"string-overrun", Touch_e::Call, {"VexaUtilStringAlloc"}},
        {"string-unterminated", Touch_e::Call, {"VexaUtilStringAlloc"}},
        {"foreign-errmsg", Touch_e::FailedCommand, {}},
        {"errmsg-on-success", Touch_e::AcceptedCommand, {}},
        {"missing-errmsg", Touch_e::FailedCommand, {}},
        {"missing-argument", Touch_e::Call, {"VexaUtilStyleGet"}},
        {"duplicate-argument", Touch_e::Call, {"VexaUtilArgListAppend"}},
        {"wrong-argument-kind", Touch_e::Call, {"VexaUtilArgListAppend"}},
        {"wrong-thread", Touch_e::SecondThread, {}},
        {"escaped-exception", Touch_e::AnyEntry, {}},
        {"command-timeout", Touch_e::Timeout, {}},
        {"recording-not-replayable", Touch_e::Replay, {}},
    };
    return all;
}

const Trigger* findTrigger(const std::string& rule) {
    const auto found = std::find_if(triggers().begin(), triggers().end(),
                                    [&](const Trigger& trigger) { return rule == trigger.rule; });
    return found == triggers().end() ? nullptr : &*found;
}

bool isAbout(const Trigger& trigger, std::string_view function) {
    return std::any_of(trigger.functions.begin(), trigger.functions.end(),
                       [=](std::string_view beginning) { return startsWith(function, beginning); });
}

bool hasCall(const TracedRun& run, const Trigger& trigger) {
    return std::any_of(run.spans.begin(), run.spans.end(), [&](const TracedSpan& span) {
        return span.kind == Kind_e::Call && isAbout(trigger, span.name);
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

bool isTouched(const TracedRun& run, const Trigger& trigger) {
    switch (trigger.touch) {
        case Touch_e::Call: return hasCall(run, trigger);
        case Touch_e::AnyEntry: return !run.entries.empty();
        case Touch_e::AcceptedCommand: return hasCommand(run, true);
        case Touch_e::FailedCommand: return hasCommand(run, false);
        case Touch_e::SecondThread: return hasSecondThread(run);
        case Touch_e::Timeout: return run.hasTimeLimit;
        case Touch_e::Replay: return run.isStrict && hasRecording(run);
    }
    return false;
}

bool isSuppressed(const TracedRun& run, const std::string& rule) {
    return std::find(run.suppressed.begin(), run.suppressed.end(), rule) != run.suppressed.end();
}

std::size_t findingsOf(const TracedRun& run, const std::string& rule) {
    return static_cast<std::size_t>(std::count_if(run.findings.begin(), run.findings.end(),
                                                  [&](const TracedFinding& finding) { return finding.rule == rule; }));
}

Coverage_e coverageOf(const TracedRun& run, const Trigger& trigger, std::size_t findings) {
    if (findings != 0) return Coverage_e::Broken;
    if (isSuppressed(run, trigger.rule)) return Coverage_e::Suppressed;
    return isTouched(run, trigger) ? Coverage_e::Touched : Coverage_e::Untouched;
}

std::string functionsOf(const Trigger& trigger) {
    std::string names;
    for (const HostFunctionInfo& function : standin::hostFunctions()) {
        if (isAbout(trigger, function.name)) names += (names.empty() ? "" : ", ") + std::string(function.name);
    }
    return names;
}

}  // namespace

std::string whatTouches(const std::string& rule) {
    const Trigger* const trigger = findTrigger(rule);
    if (trigger == nullptr) return "";
    switch (trigger->touch) {
        case Touch_e::Call: return functionsOf(*trigger);
        case Touch_e::AnyEntry: return "an add-on that is entered";
        case Touch_e::AcceptedCommand: return "a command that succeeds";
        case Touch_e::FailedCommand: return "a command that fails";
        case Touch_e::SecondThread: return "a host call on a second thread";
        case Touch_e::Timeout: return "a run with --timeout";
        case Touch_e::Replay: return "a run with --strict, and a recorded command";
    }
    return "";
}

std::vector<RuleCoverage> coverageOf(const TracedRun& run) {
    std::vector<RuleCoverage> all;
    for (const Rule& rule : standin::rules()) {
        const Trigger* const trigger = findTrigger(rule.name);
        if (trigger == nullptr) continue;
        const std::size_t findings = findingsOf(run, rule.name);
        all.push_back({&rule, coverageOf(run, *trigger, findings), whatTouches(rule.name), findings});
    }
    return all;
}

}  // namespace vexa::runner
