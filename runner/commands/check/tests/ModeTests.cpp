#include "commands/check/tests/Tests.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "formats/MacroText.h"

namespace vexa::runner {
namespace {

void runMacros(CheckedSession& session, const std::vector<MacroCommand>& steps) {
    for (const MacroCommand& step : steps) session.runWell(step);
    session.end();
}

Verdict inMode(Trial& trial, const char* mode, void (standin::Host::*setMode)(bool)) {
    trial.nowTrying(std::string("the commands of the macros, in order, ") + mode);
    CheckedSession session(trial);
    (session.host().*setMode)(true);
    runMacros(session, trial.subject().steps);
    return {};
}

std::vector<standin::RecordedCommand> recordingOf(Trial& trial, const std::vector<MacroCommand>& steps) {
    CheckedSession session(trial);
    session.host().setRecording(true);
    runMacros(session, steps);
    return session.host().recordedCommands();
}

std::vector<MacroCommand> stepsOf(const std::vector<standin::RecordedCommand>& recording) {
    std::vector<MacroCommand> steps;
    steps.reserve(recording.size());
    for (const standin::RecordedCommand& recorded : recording)
        steps.push_back({"", recorded.addOnId, recorded.command});
    return steps;
}

std::string lineOf(const std::vector<standin::RecordedCommand>& recording, std::size_t index) {
    if (index >= recording.size()) return "nothing";
    return recording[index].addOnId + ' ' + recording[index].command;
}

// Nothing when both are the same.
std::string firstDifference(const std::vector<standin::RecordedCommand>& first,
                            const std::vector<standin::RecordedCommand>& second) {
    std::size_t i = 0;
    while (i < std::max(first.size(), second.size()) && lineOf(first, i) == lineOf(second, i)) ++i;
    if (i == first.size() && i == second.size()) return "";
    return "first: " + lineOf(first, i) + "\nthen:  " + lineOf(second, i);
}

}  // namespace

Verdict inBatchMode(Trial& trial) {
    trial.nowTrying("the commands of the macros, in order, in batch mode");
    CheckedSession session(trial);
    session.host().setBatchMode(true);
    runMacros(session, trial.subject().steps);
    for (const std::string& dialog : session.host().dialogs()) {
        trial.warn("in batch mode a dialog comes up, with nobody there to close it: " + dialog);
    }
    return {};
}

Verdict whileRecording(Trial& trial) {
    return inMode(trial, "while the host records macros", &standin::Host::setRecording);
}

Verdict duringJournalPlayback(Trial& trial) {
    return inMode(trial, "while the host plays back a journal", &standin::Host::setProcessingJournal);
}

Verdict duringLayoutPlayback(Trial& trial) {
    return inMode(trial, "while the host plays back a layout", &standin::Host::setProcessingLayout);
}

Verdict recordAndReplay(Trial& trial) {
    trial.nowTrying("the commands of the macros are recorded");
    const auto first = recordingOf(trial, trial.subject().steps);
    if (first.empty()) return {Outcome_e::Skipped, "nothing is recorded"};
    trial.nowTrying("the recorded commands are run, and recorded again (recording-not-replayable)",
                    recordingText(first));
    const auto second = recordingOf(trial, stepsOf(first));
    const std::string difference = firstDifference(first, second);
    if (!difference.empty()) {
        throw CaseFailed("what was recorded records something else when it is run\n" + difference);
    }
    return {};
}

}  // namespace vexa::runner
