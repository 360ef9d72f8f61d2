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

// What the commands that were recorded are instead of `expected` alone; empty when they are just that.
std::string differenceOf(const std::vector<standin::RecordedCommand>& commands, const std::string& expected) {
    if (commands.size() == 1 && lineOf(commands.front()) == expected) return "";
    if (commands.empty()) return "records nothing";
    std::string lines;
    for (const standin::RecordedCommand& command : commands) {
        lines += (lines.empty() ? "" : " and ") + quoted(lineOf(command));
    }
    return "records " + lines;
}

// What goes wrong when it is run; empty when nothing does.
std::string whyNotReplayable(standin::Host& host, const standin::RecordedCommand& recorded) {
    try {
        const standin::CommandResult result =
            host.run(recorded.addOnId, recorded.command, recorded.recordedAt.macroLine);
        if (!result.accepted) return "fails: " + joinedLines(withoutTrailingBlanks(result.error));
        return differenceOf(host.recordedCommands(), lineOf(recorded));
    } catch (const InvalidArgumentException&) {
        return "needs the add-on " + recorded.addOnId + ", which is not loaded";
    }
}

}  // namespace

std::optional<standin::Finding> replay(standin::Host& host, const standin::RecordedCommand& recorded) {
    host.clearRecordedCommands();
    const std::string reason = whyNotReplayable(host, recorded);
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
