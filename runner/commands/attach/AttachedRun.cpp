#include "commands/attach/AttachedRun.h"

#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <set>
#include <string_view>
#include <utility>

#include "commands/attach/LayerEvents.h"
#include "contract/messages/LayerVariables.h"
#include "session/watch/Death.h"
#include "session/watch/TimeSteps.h"
#include "session/watch/WatchedStacks.h"
#include "system/files/LiveFile.h"
#include "system/processes/AwaitedSignals.h"
#include "system/processes/MessageSocket.h"
#include "system/processes/StartedProgram.h"
#include "terminal/Console.h"
#include "terminal/Terminal.h"

namespace vexa::runner {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kTimeForLastMessages{2};
constexpr const char* kAuditVariable = "LD_AUDIT";

// Sends messages to a file as long as it lives.
class Log : MessageSinkInterface {
public:
    explicit Log(const std::string& path) : m_file(path) {
        chooseColour(false);
        setMessageSink(this);
    }
    ~Log() override { setMessageSink(nullptr); }

    void tell(const std::string& lines) override { m_file.append(lines); }
    void close() { m_file.close(); }

private:
    LiveFile m_file;
};

std::optional<Clock::duration> limitOf(const AttachOptions& options) {
    if (!options.contract.timeout) return std::nullopt;
    return std::chrono::duration_cast<Clock::duration>(*options.contract.timeout);
}

std::vector<std::pair<std::string, std::string>> variablesOf(const AttachOptions& options, const std::string& layer,
                                                             const std::string& socket) {
    const std::string_view others = environment(kAuditVariable);
    std::vector<std::pair<std::string, std::string>> variables = {
        {kAuditVariable, others.empty() ? layer : std::string(others) + ':' + layer},
        {standin::kSocketVariable, socket},
        {standin::kEntryVariable, options.entry}};
    if (options.trace.events || options.trace.text) variables.emplace_back(standin::kTraceVariable, "1");
    return variables;
}

std::string signalText(int signal) { return "signal " + std::to_string(signal) + " (" + strsignal(signal) + ')'; }

std::string outcomeOf(int waitStatus) {
    if (WIFSIGNALED(waitStatus)) {
        return "the program was ended by " + signalText(WTERMSIG(waitStatus));
    }
    return "the program ended with status " + std::to_string(WEXITSTATUS(waitStatus));
}

class AttachedRun {
public:
    AttachedRun(const AttachOptions& options, const std::string& file, const std::string& layer)
        : m_limit(limitOf(options)), m_showsWholeStacks(options.contract.showsStacks) {
        m_traces.open(options.trace);
        m_events.emplace(options.contract, m_traces.observer());
        m_program.emplace(file, options.program, variablesOf(options, layer, m_socket.path()), m_signals.before());
    }

    ExitStatus_e finish() {
        while (!m_end) {
            wait();
            receive();
            handleSignals();
            if (m_limit) endLateWork();
        }
        receiveRest();
        m_events->finish();
        const std::string outcome = outcomeOf(*m_end);
        tellDeaths(outcome);
        return m_traces.finish(status(), outcome);
    }

private:
    void wait() {
        if (!m_limit) return m_socket.wait(m_signals.descriptor());
        const Clock::time_point begin = Clock::now();
        m_socket.wait(m_signals.descriptor(), kTimeStep);
        const Clock::duration time = Clock::now() - begin;
        if (time > kLongestTimeStep) m_events->forgive(time - kLongestTimeStep);
    }

    // The program that was started may be a script, which goes on.
    void endLateWork() {
        const auto thread = m_events->reportLate(*m_limit);
        if (!thread) return;
        m_isLate = true;
        const pid_t process = processOfThread(static_cast<pid_t>(*thread));
        if (process == 0) return;
        tellStacks(shown(m_stacks.ofHang(process, 0)));
        m_killed.insert(process);
        kill(process, SIGKILL);
    }

    StackReport shown(StackReport report) const {
        report.isWhole = m_showsWholeStacks;
        return report;
    }

    bool receive() {
        return m_socket.receive([this](std::string_view message) { m_events->take(message); });
    }

    // Another process that the program has left behind may go on.
    void receiveRest() {
        const auto end = std::chrono::steady_clock::now() + kTimeForLastMessages;
        while (receive() && std::chrono::steady_clock::now() < end) {}
    }

    // The terminal sends its signals to the program, too. Only those that end this program alone are passed on.
    void handleSignals() {
        while (const auto signal = m_signals.next()) {
            if (*signal == SIGTERM || *signal == SIGHUP) m_program->send(*signal);
            if (*signal != SIGCHLD) continue;
            m_stacks.attend();
            handleChange();
        }
    }

    // The shell that started this program sees what happens to the program that it meant.
    void handleChange() {
        while (const auto change = m_program->change()) {
            if (WIFSTOPPED(*change)) {
                stop(m_program->id());
            } else {
                m_end = *change;
            }
        }
    }

    void stop(pid_t process) const {
        if (process == m_program->id()) raise(SIGSTOP);
    }

    void tellDeaths(const std::string& outcome) {
        const pid_t program = m_program->id();
        if (WIFSIGNALED(*m_end) && m_killed.count(program) == 0) tellDeath(outcome, m_stacks.ofEnd(program, *m_end));
        for (const auto& [process, stacks] : m_stacks.ends()) {
            if (process == program) continue;
            tellDeath("a process of the program was ended by " + signalText(stacks.signal), stacks);
        }
    }

    void tellDeath(const std::string& outcome, const StackReport& stacks) {
        m_traces.crashed({outcome, stacks});
        std::string text = outcome;
        for (const std::string& work : m_events->unfinished()) text += "\nin " + work;
        tell(kProgramName, text);
        tellStacks(shown(stacks));
    }

    ExitStatus_e status() const {
        if (m_isLate) return ExitStatus_e::CommandHung;
        if (m_events->isContractBroken()) return ExitStatus_e::ContractViolated;
        const int ended = WIFSIGNALED(*m_end) ? kKilledBySignal + WTERMSIG(*m_end) : WEXITSTATUS(*m_end);
        return static_cast<ExitStatus_e>(ended);
    }

    const std::optional<Clock::duration> m_limit;
    const bool m_showsWholeStacks;
    AwaitedSignals m_signals;
    WatchedStacks m_stacks{[this](const std::string& object) { return m_events->isOfAddOn(object); },
                           [this](pid_t process) { stop(process); }};
    MessageSocket m_socket{[this](pid_t process) { m_stacks.watch(process); }};
    TraceOutputs m_traces;
    std::optional<LayerEvents> m_events;
    std::optional<StartedProgram> m_program;
    std::optional<int> m_end;  // as from waitpid()
    std::set<pid_t> m_killed;  // because of the time limit
    bool m_isLate = false;
};

}  // namespace

ExitStatus_e runAttached(const AttachOptions& options, const std::string& file, const std::string& layer) {
    std::optional<Log> log;
    if (options.log) log.emplace(*options.log);
    const ExitStatus_e status = AttachedRun(options, file, layer).finish();
    if (log) log->close();
    return status;
}

}  // namespace vexa::runner
