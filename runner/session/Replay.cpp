#include "session/Replay.h"

#include <string>
#include <vector>

#include "terminal/Console.h"
#include "text/Lines.h"
#include "vexa/InvalidArgumentException.h"

namespace vexa::runner {
namespace {

std::string lineOf(const standin::RecordedCommand& recorded) { return recorded.addOnId + ' ' + recorded.command; }

std::string quoted(const std::string& text) { return '"' + text + '"'; }

// Describes how the recorded commands differ from the single command `expected`; empty if they do not.
std::string differenceOf(const std::vector<standin::RecordedCommand>& commands, const std::string& expected) {
    if (commands.size() == 1 && lineOf(commands.front()) == expected) return "";
    if (commands.empty()) return "records nothing";
    std::string lines;
    for (const standin::RecordedCommand& command : commands) {
        lines += (lines.empty() ? "" : " and ") + quoted(lineOf(command));
    }
    return "records " + lines;
}

// Why the command cannot be played back; empty if it can.
std::string whyNotReplayable(Session& session, const standin::RecordedCommand& recorded) {
    try {
        const standin::CommandResult result =
            session.run({recorded.recordedAt.macroLine, recorded.addOnId, recorded.command});
        if (!result.accepted) return "fails: " + joinedLines(withoutTrailingBlanks(result.error));
        return differenceOf(session.host().recordedCommands(), lineOf(recorded));
    } catch (const InvalidArgumentException&) {
        return "needs the add-on " + recorded.addOnId + ", which is not loaded";
    }
}

}  // namespace

std::optional<standin::Finding> replay(Session& session, const standin::RecordedCommand& recorded) {
    session.host().clearRecordedCommands();
    const std::string reason = whyNotReplayable(session, recorded);
    if (reason.empty()) return std::nullopt;
    standin::Finding finding;
    finding.rule = "recording-not-replayable";
    finding.addOnId = recorded.addOnId;
    finding.message = "the recorded command " + quoted(lineOf(recorded)) + ", when it is run again, " + reason;
    finding.opened = recorded.recordedAt;
    finding.seen = standin::Place{0, "", lineOf(recorded), recorded.recordedAt.macroLine, 0};
    return finding;
}

}  // namespace vexa::runner
