#include "commands/attach/AttachedRun.h"

#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <string_view>
#include <utility>

#include "commands/attach/LayerEvents.h"
#include "contract/messages/LayerVariables.h"
#include "system/files/LiveFile.h"
#include "system/processes/AwaitedSignals.h"
#include "system/processes/MessageSocket.h"
#include "system/processes/StartedProgram.h"
#include "terminal/Console.h"
#include "terminal/Terminal.h"

namespace vexa::runner {
namespace {

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

std::string outcomeOf(int waitStatus) {
    if (WIFSIGNALED(waitStatus)) {
        const int signal = WTERMSIG(waitStatus);
        return "the program was ended by signal " + std::to_string(signal) + " (" + strsignal(signal) + ')';
    }
    return "the program ended with status " + std::to_string(WEXITSTATUS(waitStatus));
}

class AttachedRun {
public:
    AttachedRun(const AttachOptions& options, const std::string& file, const std::string& layer) {
        m_traces.open(options.trace);
        m_events.emplace(options.contract, m_traces.observer());
        m_program.emplace(file, options.program, variablesOf(options, layer, m_socket.path()), m_signals.before());
    }

    ExitStatus_e finish() {
        while (!m_end) {
            m_socket.wait(m_signals.descriptor());
            receive();
            handleSignals();
        }
        receiveRest();
        m_events->finish();
        const std::string outcome = outcomeOf(*m_end);
        if (WIFSIGNALED(*m_end)) tellDeath(outcome);
        return m_traces.finish(status(), outcome);
    }

private:
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
            if (*signal == SIGCHLD) handleChange();
        }
    }

    // The shell that started this program sees what happens to the program that it meant.
    void handleChange() {
        while (const auto change = m_program->change()) {
            if (WIFSTOPPED(*change)) {
                raise(SIGSTOP);
            } else {
                m_end = *change;
            }
        }
    }

    void tellDeath(const std::string& outcome) const {
        std::string text = outcome;
        for (const std::string& work : m_events->unfinished()) text += "\nin " + work;
        tell(kProgramName, text);
    }

    ExitStatus_e status() const {
        if (m_events->isContractBroken()) return ExitStatus_e::ContractViolated;
        const int ended = WIFSIGNALED(*m_end) ? kKilledBySignal + WTERMSIG(*m_end) : WEXITSTATUS(*m_end);
        return static_cast<ExitStatus_e>(ended);
    }

    AwaitedSignals m_signals;
    MessageSocket m_socket;
    TraceOutputs m_traces;
    std::optional<LayerEvents> m_events;
    std::optional<StartedProgram> m_program;
    std::optional<int> m_end;  // as from waitpid()
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
