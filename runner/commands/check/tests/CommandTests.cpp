#include "commands/check/tests/Tests.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "vexa/AddOn.h"

namespace vexa::runner {
namespace {

// Runs commands. Each may fail, because an earlier command that it needs may be missing.
void runInOneSession(Trial& trial, const std::vector<MacroCommand>& steps) {
    CheckedSession session(trial);
    for (const MacroCommand& step : steps) session.run(step);
    session.end();
}

// ---- The second add-on: its command `ID text` runs the command `text` of the add-on ID.

constexpr char kCaller[] = "VEXA-STANDIN-CHECK";

char* asHostString(const std::string& text) {
    char* const string = VexaUtilStringAlloc(static_cast<int>(text.size() + 1), "error message");
    if (string != nullptr) std::memcpy(string, text.c_str(), text.size() + 1);
    return string;
}

VexaBoolean runOther(const char* command, char** errMsg) {
    const char* const idEnd = std::strchr(command, ' ');
    const standin::CommandResult result = standin::Host::current()->run({command, idEnd}, idEnd + 1);
    if (!result.accepted) *errMsg = asHostString(result.error);
    return result.accepted ? 1 : 0;
}

const VexaAddOn_s* enterCaller(AddOnList_s*) {
    static const VexaAddOn_s description = {VEXA_ADDON_API_VERSION, kCaller, nullptr, runOther, nullptr};
    return &description;
}

// ---- Modes of the host

// Runs the commands of the macros in a mode of the host, and returns the dialogs that they showed.
std::vector<std::string> dialogsInMode(Trial& trial, const char* mode, void (standin::Host::*setMode)(bool)) {
    trial.nowTrying(std::string("the commands of the macros, in order, ") + mode);
    CheckedSession session(trial);
    (session.host().*setMode)(true);
    session.runWellAndEnd(trial.subject().steps);
    return session.host().dialogs();
}

std::vector<std::string> recordingOf(Trial& trial, const std::vector<MacroCommand>& steps) {
    CheckedSession session(trial);
    session.host().setRecording(true);
    session.runWellAndEnd(steps);
    return session.recorded();
}

std::string lineOf(const std::vector<std::string>& recording, std::size_t index) {
    return index < recording.size() ? recording[index] : "nothing";
}

}  // namespace

Verdict commandsInOrder(Trial& trial) {
    const std::vector<MacroCommand>& steps = trial.subject().steps;
    trial.nowTrying("the commands of the macros, in order", macroOf(steps));
    CheckedSession(trial).runWellAndEnd(steps);
    return {};
}

Verdict commandsAlone(Trial& trial) {
    for (const MacroCommand& step : trial.subject().steps) {
        trial.nowTrying("alone: " + nameOf(step), macroOf({step}));
        runInOneSession(trial, {step});
    }
    return {};
}

Verdict commandsTwice(Trial& trial) {
    std::vector<MacroCommand> steps;
    for (const MacroCommand& step : trial.subject().steps) steps.insert(steps.end(), 2, step);
    trial.nowTrying("the commands of the macros, each twice", macroOf(steps));
    runInOneSession(trial, steps);
    return {};
}

Verdict commandsInRandomOrder(Trial& trial) {
    constexpr int kOrders = 5;
    std::vector<MacroCommand> steps = trial.subject().steps;
    for (int order = 0; order != kOrders; ++order) {
        // Not by std::shuffle(), because its result differs between C++ libraries.
        for (std::size_t left = steps.size(); left > 1; --left) {
            std::swap(steps[left - 1], steps[trial.random()() % left]);
        }
        trial.nowTrying("the commands of the macros, in random order", macroOf(steps));
        runInOneSession(trial, steps);
    }
    return {};
}

Verdict commandsFromSecondAddOn(Trial& trial) {
    trial.nowTrying("the commands of the macros, in order, each run by a command of another add-on");
    CheckedSession session(trial);
    session.host().linkAddOn(enterCaller);
    std::vector<MacroCommand> steps;
    for (const MacroCommand& step : trial.subject().steps) {
        steps.push_back({step.place, kCaller, step.addOnId + ' ' + step.text});
    }
    session.runWellAndEnd(steps);
    return {};
}

Verdict inBatchMode(Trial& trial) {
    for (const std::string& dialog : dialogsInMode(trial, "in batch mode", &standin::Host::setBatchMode)) {
        trial.warn("in batch mode the add-on shows a dialog, which nobody can close: " + dialog);
    }
    return {};
}

Verdict whileRecording(Trial& trial) {
    dialogsInMode(trial, "while the host records macros", &standin::Host::setRecording);
    return {};
}

Verdict duringJournalPlayback(Trial& trial) {
    dialogsInMode(trial, "while the host plays back a journal", &standin::Host::setProcessingJournal);
    return {};
}

Verdict duringLayoutPlayback(Trial& trial) {
    dialogsInMode(trial, "while the host plays back a layout", &standin::Host::setProcessingLayout);
    return {};
}

Verdict recordAndReplay(Trial& trial) {
    trial.nowTrying("the commands of the macros are recorded");
    const std::vector<std::string> first = recordingOf(trial, trial.subject().steps);
    if (first.empty()) return {Outcome_e::Skipped, "nothing is recorded"};
    const std::vector<MacroCommand> steps = stepsOf(first);
    trial.nowTrying("the recorded commands are run, and recorded again (recording-not-replayable)", macroOf(steps));
    const std::vector<std::string> second = recordingOf(trial, steps);
    if (first == second) return {};
    const auto same = std::mismatch(first.begin(), first.end(), second.begin(), second.end()).first - first.begin();
    const auto index = static_cast<std::size_t>(same);
    throw CaseFailed("the recorded commands record something else when they are run\nfirst: " + lineOf(first, index) +
                     "\nthen:  " + lineOf(second, index));
}

}  // namespace vexa::runner
