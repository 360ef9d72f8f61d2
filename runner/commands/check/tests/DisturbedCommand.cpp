#include "commands/check/tests/DisturbedCommand.h"

#include <algorithm>
#include <utility>

#include "commands/check/trial/AllocationFaults.h"
#include "session/Replay.h"
#include "text/Counted.h"

namespace vexa::runner {
namespace {

constexpr const char* kUnknownCommand = "NO_SUCH_COMMAND";
constexpr std::size_t kMostTogether = 16;
constexpr std::size_t kFirstTogether = 4;  // small, so that every command, even a slow one, gets its first cases soon

std::vector<Disturbance> takeSome(RankedDisturbances& left, std::size_t most) {
    std::vector<Disturbance> taken;
    while (!left.empty() && taken.size() != most) taken.push_back(std::move(left.extract(left.begin()).mapped()));
    return taken;
}

bool isSame(const Deed& left, const Deed& right) {
    return left.accepted == right.accepted && left.recorded == right.recorded;
}

std::string quotedLines(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines) text += "\n    " + line;
    return text.empty() ? " nothing" : text;
}

std::string textOf(const Deed& deed) {
    if (deed.accepted) return "it succeeded and recorded" + quotedLines(deed.recorded);
    return "it failed, with " + (deed.error.empty() ? "no message" : "the message: " + deed.error);
}

// Returns the commands of the macros, each with the commands before it, and a command that the add-on does not know.
std::vector<DisturbedCommand> disturbedCommands(Trial& trial) {
    std::vector<DisturbedCommand> commands;
    std::vector<MacroCommand> before;
    for (const MacroCommand& step : trial.subject().steps) {
        commands.emplace_back(trial, before, step);
        before.push_back(step);
    }
    const std::string addOnId = CheckedSession(trial).host().addOns().front().id;
    commands.emplace_back(trial, std::vector<MacroCommand>{}, MacroCommand{"", addOnId, kUnknownCommand});
    return commands;
}

}  // namespace

DisturbedCommand::DisturbedCommand(Trial& trial, std::vector<MacroCommand> before, MacroCommand step)
    : m_trial(trial), m_before(std::move(before)), m_step(std::move(step)) {
    m_trial.nowTrying(nameOf(m_step) + ": undisturbed");
    CheckedSession session(m_trial);
    runBefore(session);
    m_undisturbed = runOnce(session);
    for (const standin::Call& call : session.host().calls()) m_results[call.function].push_back(call.result);
    m_repeats = isSame(runOnce(session), m_undisturbed);
    session.end();
    CheckedSession other(m_trial);
    runBefore(other);
    m_isSteady = isSame(runOnce(other), m_undisturbed);
    other.end();
}

std::vector<std::string> DisturbedCommand::resultsOf(const std::string& function) const {
    const auto found = m_results.find(function);
    return found == m_results.end() ? std::vector<std::string>{} : found->second;
}

void DisturbedCommand::run(const std::vector<Disturbance>& disturbances) const {
    try {
        for (auto at = disturbances.begin(); at != disturbances.end();) at = runTogether(at, disturbances.end());
    } catch (const CaseFailed& failure) {
        for (auto at = disturbances.begin(); at != disturbances.end(); ++at) runTogether(at, at + 1);
        m_trial.nowTrying(nameOf(m_step) + ": several times in one session, from: " + disturbances.front().what +
                          "; to: " + disturbances.back().what);
        throw;
    }
}

// Runs as many disturbances as possible in one session, and returns the next one.
DisturbedCommand::Position DisturbedCommand::runTogether(Position at, Position end) const {
    CheckedSession session(m_trial);
    runBefore(session);
    bool isPossibleAgain = true;
    while (at != end && isPossibleAgain) {
        const Deed deed = runDisturbed(session, *at++);
        // A command that succeeded may not be possible a second time.
        isPossibleAgain = !deed.accepted || m_repeats;
    }
    if (isPossibleAgain) {
        expectUsual(runOnce(session), "after it, the same command has another result, although nothing disturbs it",
                    "before");
    }
    session.end();
    return at;
}

Deed DisturbedCommand::runDisturbed(CheckedSession& session, const Disturbance& disturbance) const {
    m_trial.nowTrying(nameOf(m_step) + ": " + disturbance.what);
    for (const std::string& rule : disturbance.suppressed) session.host().suppress(rule);
    Deed deed;
    disturbance.run(session.host(), [&] { deed = runOnce(session); });
    session.expectContractKept();
    expectReplayable(deed.recorded);
    if (disturbance.successIsWhole && deed.accepted) {
        expectUsual(deed, "the command reports success, but did only a part of its work", "undisturbed");
    }
    return deed;
}

std::size_t DisturbedCommand::countAllocations() const {
    m_trial.nowTrying(nameOf(m_step) + ": undisturbed");
    CheckedSession session(m_trial);
    runBefore(session);
    const AllocationFaults counting(AllocationFaults::kNone, AllocationFaults::kNone);
    session.run(m_step);
    return AllocationFaults::count();
}

Deed DisturbedCommand::runOnce(CheckedSession& session) const {
    standin::Host& host = session.host();
    host.clearCalls();
    host.clearRecordedCommands();
    const standin::CommandResult result = session.run(m_step);
    return {result.accepted, result.error, session.recorded()};
}

void DisturbedCommand::runBefore(CheckedSession& session) const {
    session.host().setRecording(true);
    for (const MacroCommand& step : m_before) session.run(step);
}

// A disturbed command may do less than usual and record other commands, but each recorded command must be replayable.
void DisturbedCommand::expectReplayable(const std::vector<std::string>& recorded) const {
    for (const std::string& line : recorded) {
        const std::vector<std::string>& usual = m_undisturbed.recorded;
        if (std::find(usual.begin(), usual.end(), line) != usual.end()) continue;
        const MacroCommand command = commandOfLine(line);
        CheckedSession session(m_trial);
        runBefore(session);
        const auto finding = replay(session.session(), {command.addOnId, command.text, {}});
        if (finding) session.host().report(*finding);
        session.end();
    }
}

void DisturbedCommand::expectUsual(const Deed& deed, const std::string& wrong, const std::string& usually) const {
    if (!m_isSteady || isSame(deed, m_undisturbed)) return;
    throw CaseFailed(wrong + ": " + textOf(deed) + '\n' + usually + ", " + textOf(m_undisturbed));
}

Verdict tryDisturbances(Trial& trial,
                        const std::function<RankedDisturbances(const DisturbedCommand& command)>& disturbancesOf,
                        const char* whyNone) {
    const std::vector<DisturbedCommand> commands = disturbedCommands(trial);
    std::vector<RankedDisturbances> left;
    std::size_t count = 0;
    for (const DisturbedCommand& command : commands) count += left.emplace_back(disturbancesOf(command)).size();
    if (count == 0) return {Outcome_e::Skipped, whyNone};
    std::size_t tried = 0;
    for (bool isFirstRound = true; tried != count && (isFirstRound || !trial.isTimeUp()); isFirstRound = false) {
        for (std::size_t i = 0; i != commands.size(); ++i) {
            if (left[i].empty() || (!isFirstRound && trial.isTimeUp())) continue;
            const std::vector<Disturbance> together = takeSome(left[i], isFirstRound ? kFirstTogether : kMostTogether);
            commands[i].run(together);
            tried += together.size();
        }
    }
    std::string reason = counted(tried, "case");
    if (tried != count) reason += " of " + std::to_string(count) + "; the time was over";
    return {Outcome_e::Passed, reason};
}

}  // namespace vexa::runner
