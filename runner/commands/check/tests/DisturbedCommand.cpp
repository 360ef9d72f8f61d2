#include "commands/check/tests/DisturbedCommand.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <map>
#include <numeric>
#include <utility>

#include "commands/check/trial/AllocationFaults.h"
#include "session/Replay.h"

namespace vexa::runner {
namespace {

constexpr const char* kUnknownCommand = "NO_SUCH_COMMAND";
constexpr std::size_t kMostTogether = 16;
constexpr std::size_t kFirstTogether = 4;  // so that slow commands, too, soon had their first cases

std::vector<Disturbance> takeSome(std::deque<Disturbance>& left, std::size_t most) {
    const auto end = left.begin() + static_cast<std::ptrdiff_t>(std::min(left.size(), most));
    std::vector<Disturbance> taken(std::make_move_iterator(left.begin()), std::make_move_iterator(end));
    left.erase(left.begin(), end);
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

}  // namespace

DisturbedCommand::DisturbedCommand(Trial& trial, std::vector<MacroCommand> before, MacroCommand step)
    : m_trial(trial), m_before(std::move(before)), m_step(std::move(step)) {
    m_trial.nowTrying(name() + ": undisturbed");
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

void DisturbedCommand::run(const Disturbances& disturbances) const {
    try {
        for (auto at = disturbances.begin(); at != disturbances.end();) at = runTogether(at, disturbances.end());
    } catch (const CaseFailed& failure) {
        for (auto at = disturbances.begin(); at != disturbances.end(); ++at) runTogether(at, at + 1);
        m_trial.nowTrying(name() + ": several times in one session, from: " + disturbances.front().what +
                          "; to: " + disturbances.back().what);
        throw;
    }
}

// Returns up to where one session could serve.
DisturbedCommand::Disturbances::const_iterator DisturbedCommand::runTogether(Disturbances::const_iterator at,
                                                                             Disturbances::const_iterator end) const {
    CheckedSession session(m_trial);
    runBefore(session);
    bool isPossibleAgain = true;
    while (at != end && isPossibleAgain) {
        const Deed deed = runDisturbed(session, *at++);
        // What succeeded need not be possible again.
        isPossibleAgain = !deed.accepted || m_repeats;
    }
    if (isPossibleAgain) expectUndisturbed(runOnce(session));
    session.end();
    return at;
}

Deed DisturbedCommand::runDisturbed(CheckedSession& session, const Disturbance& disturbance) const {
    m_trial.nowTrying(name() + ": " + disturbance.what);
    for (const std::string& rule : disturbance.suppressed) session.host().suppress(rule);
    Deed deed;
    disturbance.run(session.host(), [&] { deed = runOnce(session); });
    session.expectContractKept();
    expectReplayable(deed.recorded);
    if (disturbance.successIsWhole) expectSuccessIsWhole(deed);
    return deed;
}

std::size_t DisturbedCommand::countAllocations() const {
    m_trial.nowTrying(name() + ": undisturbed");
    CheckedSession session(m_trial);
    runBefore(session);
    const AllocationFaults counting(Failing_e::None);
    session.run(m_step);
    return AllocationFaults::count();
}

Deed DisturbedCommand::runOnce(CheckedSession& session) const {
    standin::Host& host = session.host();
    host.clearCalls();
    host.clearRecordedCommands();
    const standin::CommandResult result = session.run(m_step);
    Deed deed = {result.accepted, result.error, {}};
    for (const standin::RecordedCommand& recorded : host.recordedCommands()) {
        deed.recorded.push_back(recorded.addOnId + ' ' + recorded.command);
    }
    return deed;
}

void DisturbedCommand::runBefore(CheckedSession& session) const {
    session.host().setRecording(true);
    for (const MacroCommand& step : m_before) session.run(step);
}

// Disturbed, a command may do less than it should, and record that; but not what cannot be run.
void DisturbedCommand::expectReplayable(const std::vector<std::string>& recorded) const {
    for (const std::string& line : recorded) {
        const std::vector<std::string>& usual = m_undisturbed.recorded;
        if (std::find(usual.begin(), usual.end(), line) != usual.end()) continue;
        const std::size_t idEnd = line.find(' ');
        CheckedSession session(m_trial);
        runBefore(session);
        const auto finding = replay(session.session(), {line.substr(0, idEnd), line.substr(idEnd + 1), {}});
        if (finding) session.host().report(*finding);
        session.end();
    }
}

void DisturbedCommand::expectSuccessIsWhole(const Deed& deed) const {
    if (!deed.accepted || !m_isSteady || isSame(deed, m_undisturbed)) return;
    throw CaseFailed("the command reports success, but did not do all it does: " + textOf(deed) + "\nundisturbed, " +
                     textOf(m_undisturbed));
}

void DisturbedCommand::expectUndisturbed(const Deed& deed) const {
    if (!m_isSteady || isSame(deed, m_undisturbed)) return;
    throw CaseFailed("the same command behind it, undisturbed, does not do what it does: " + textOf(deed) +
                     "\nbefore, " + textOf(m_undisturbed));
}

std::string DisturbedCommand::name() const {
    return m_step.addOnId + ' ' + m_step.text + (m_step.place.empty() ? "" : " (" + m_step.place + ')');
}

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

Verdict tryCases(Trial& trial, const std::vector<DisturbedCommand>& commands, std::vector<DisturbedCase> cases) {
    if (cases.empty()) return {Outcome_e::Skipped, "there was nothing to disturb"};
    // A multimap keeps equal ranks in order. So does std::stable_sort, but clang 19 warns about it in libstdc++ 12.
    std::multimap<std::size_t, DisturbedCase*> byRank;
    for (DisturbedCase& one : cases) byRank.emplace(one.rank, &one);
    std::vector<std::deque<Disturbance>> left(commands.size());
    for (const auto& [rank, one] : byRank) left[one->command].push_back(std::move(one->disturbance));
    std::size_t tried = 0;
    for (bool isFirstRound = true; tried != cases.size() && (isFirstRound || !trial.isTimeUp()); isFirstRound = false) {
        for (std::size_t i = 0; i != commands.size(); ++i) {
            const std::vector<Disturbance> together = takeSome(left[i], isFirstRound ? kFirstTogether : kMostTogether);
            if (together.empty() || (!isFirstRound && trial.isTimeUp())) continue;
            commands[i].run(together);
            tried += together.size();
        }
    }
    std::string reason = std::to_string(tried) + (tried == 1 ? " case" : " cases");
    if (tried != cases.size()) reason += " of " + std::to_string(cases.size()) + "; then the time was up";
    return {Outcome_e::Passed, reason};
}

std::vector<std::size_t> sampled(Trial& trial, std::size_t count, std::size_t most) {
    std::vector<std::size_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), std::size_t{1});
    if (count > 2) std::swap(numbers[1], numbers.back());
    for (std::size_t at = 2; at < count; ++at) std::swap(numbers[at], numbers[at + trial.random()() % (count - at)]);
    numbers.resize(std::min(count, most));
    return numbers;
}

}  // namespace vexa::runner
