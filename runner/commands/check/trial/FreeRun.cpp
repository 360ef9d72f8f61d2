#include "commands/check/trial/FreeRun.h"

#include <algorithm>
#include <optional>

#include "session/Replay.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kChecksUntilStop = 20;

void runAll(CheckedSession& session, const std::vector<MacroCommand>& steps) {
    standin::Host& host = session.host();
    host.setRecording(true);
    host.setKeepsCalls(false);
    for (const MacroCommand& step : steps) {
        host.clearRecordedCommands();
        host.pressStopAtCheck(kChecksUntilStop);
        session.run(step);
        host.releaseStop();
    }
}

// Returns a finding if the command cannot be played back.
std::optional<standin::Finding> playBack(Trial& trial, const std::vector<MacroCommand>& before,
                                         const standin::RecordedCommand& recorded) {
    CheckedSession session(trial);
    runAll(session, before);
    return replay(session.session(), recorded);
}

bool haveMacroLines(const std::vector<MacroCommand>& steps) {
    return std::all_of(steps.begin(), steps.end(), [](const MacroCommand& step) { return fitsMacroLine(step.text); });
}

// Removes findings about commands that do not fit on a line of a macro. The damaged text is the cause, not the add-on.
void forgetRefusedRecordings(std::vector<standin::Finding>& findings) {
    const auto isRefusal = [](const auto& finding) { return finding.rule == "recording-not-replayable"; };
    findings.erase(std::remove_if(findings.begin(), findings.end(), isRefusal), findings.end());
}

}  // namespace

std::vector<standin::Finding> findingsOf(Trial& trial, const std::vector<MacroCommand>& steps) {
    CheckedSession session(trial);
    standin::Host& host = session.host();
    runAll(session, steps);
    const std::vector<MacroCommand> before(steps.begin(), steps.empty() ? steps.end() : steps.end() - 1);
    for (const standin::RecordedCommand& recorded : host.recordedCommands()) {
        if (const auto finding = playBack(trial, before, recorded)) host.report(*finding);
    }
    session.session().unloadAddOns();
    std::vector<standin::Finding> findings = host.violations();
    if (!haveMacroLines(steps)) forgetRefusedRecordings(findings);
    return findings;
}

}  // namespace vexa::runner
