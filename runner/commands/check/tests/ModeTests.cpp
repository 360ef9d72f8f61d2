#include "commands/check/tests/Tests.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace vexa::runner {
namespace {

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

Verdict inBatchMode(Trial& trial) {
    for (const std::string& dialog : dialogsInMode(trial, "in batch mode", &standin::Host::setBatchMode)) {
        trial.warn("in batch mode a dialog comes up, with nobody there to close it: " + dialog);
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
    std::vector<MacroCommand> steps;
    for (const std::string& line : first) steps.push_back(commandOfLine(line));
    trial.nowTrying("the recorded commands are run, and recorded again (recording-not-replayable)", macroOf(steps));
    const std::vector<std::string> second = recordingOf(trial, steps);
    if (first == second) return {};
    const auto same = std::mismatch(first.begin(), first.end(), second.begin(), second.end()).first - first.begin();
    const auto index = static_cast<std::size_t>(same);
    throw CaseFailed("what was recorded records something else when it is run\nfirst: " + lineOf(first, index) +
                     "\nthen:  " + lineOf(second, index));
}

}  // namespace vexa::runner
