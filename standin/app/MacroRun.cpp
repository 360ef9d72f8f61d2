#include "MacroRun.h"

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <memory>
#include <string_view>
#include <thread>
#include <type_traits>

#include "AddOns.h"
#include "Console.h"
#include "Descriptor.h"
#include "DiscardedOutput.h"
#include "FailureText.h"
#include "FindingTeller.h"
#include "Hang.h"
#include "MacroFile.h"
#include "PlainStatus.h"
#include "Replay.h"
#include "ResultsFile.h"
#include "RunOutputs.h"
#include "Screen.h"
#include "StopButton.h"
#include "StyleFile.h"
#include "Terminal.h"
#include "Watchdog.h"
#include "vexastandin/Host.h"

namespace vexa::runner {
namespace {

constexpr std::chrono::seconds kTimeForLastWords{5};

// The files that the run reads or writes, beside its traces.
std::vector<std::string> filesOf(const RunOptions& options) {
    std::vector<std::string> files = options.addOns;
    files.push_back(options.macroFile);
    for (const auto& file : {options.record, options.journal, options.style}) {
        if (file) files.push_back(*file);
    }
    return files;
}

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

class MacroRun {
public:
    explicit MacroRun(const RunOptions& options) : m_options(options) {
        m_host.setKeepsCalls(false);
        m_host.setBatchMode(options.batch);
        m_host.setRecording(options.record || options.contract.isStrict());
        for (const std::string& rule : options.contract.suppressed) m_host.suppress(rule);
        m_host.onDialog([this](const std::string& text) { showDialog(text); });
        m_host.onStatus([this](const standin::StatusLine& line) { showStatus(line); });
        if (drawsStatus()) m_screen.emplace([this] { return m_stopButton.isPressed(); });
        if (options.contract.timeout) m_watchdog.emplace([this] { endHung(); });
    }
    MacroRun(const MacroRun&) = delete;
    MacroRun& operator=(const MacroRun&) = delete;
    ~MacroRun() { m_stopButton.disarm(); }

    ExitStatus_e execute() { return finish(runToEnd()); }

private:
    // Results on the standard output may come between, in the same terminal.
    bool drawsStatus() const {
        const bool showsResults = m_options.json == "-";
        return !m_options.batch && !showsResults && isTerminal(STDERR_FILENO);
    }

    ExitStatus_e finish(ExitStatus_e status) {
        return m_results.finish(m_traces.finish(status), m_options.macroFile, m_host);
    }

    ExitStatus_e runToEnd() {
        const bool ready = openOutputs() && loadStyle() && loadAddOnsOf(m_host) && readMacro();
        bool written = false;
        if (ready) {
            runCommands();
            written = writeOutputs();
        }
        unloadAddOnsOf(m_host);
        m_findings.tellNew();
        if (m_options.contract.isStrict() && written && !m_isStopped) written = replayRecording();
        if (ready) m_findings.tellEnd();
        if (ready && m_options.verbose) tell(m_summary);
        return written ? statusOfRun() : ExitStatus_e::BadUsageOrInput;
    }

    ExitStatus_e statusOfRun() const {
        if (m_isStopped) return ExitStatus_e::Stopped;
        const ContractOptions& contract = m_options.contract;
        const bool isBroken = contract.isStrict() && hasBreach(m_host, contract.warningsAsErrors.value_or(false));
        if (isBroken) return ExitStatus_e::ContractViolated;
        return m_failed == 0 ? ExitStatus_e::AllWell : ExitStatus_e::CommandFailed;
    }

    bool openOutputs() {
        try {
            m_outputs.open(m_options.record, m_options.journal);
            m_traces.open(m_options.trace, filesOf(m_options));
            openResults();
        } catch (const OutputError& error) {
            tell(error.what());
            return false;
        }
        m_host.setObserver(m_traces.observer());
        m_stopButton.install();
        return true;
    }

    void openResults() {
        if (m_options.jsonDescriptor) {
            m_results.open(std::make_unique<LiveFile>("<results>", *m_options.jsonDescriptor));
        } else if (m_options.json) {
            std::vector<std::string> taken = filesOf(m_options);
            for (const auto& trace : {m_options.trace.events, m_options.trace.text}) {
                if (trace) taken.push_back(*trace);
            }
            m_results.open(openResultsFile(*m_options.json, taken));
        }
    }

    bool loadStyle() {
        if (!m_options.style) return true;
        m_styles = readStyles(*m_options.style);
        if (m_styles) giveStyles(m_host, *m_styles);
        return m_styles.has_value();
    }

    bool loadAddOnsOf(standin::Host& host) {
        bool allLoaded = true;
        for (const std::string& file : m_options.addOns) {
            allLoaded &= inTime(host, 1, [&] { return loadAddOn(host, file); });
        }
        return allLoaded;
    }

    // There is one call to unload all.
    void unloadAddOnsOf(standin::Host& host) {
        inTime(host, host.addOns().size(), [&] { host.unloadAddOns(); });
    }

    bool readMacro() {
        m_macro = readMacroFile(m_options.macroFile, loadedIds(m_host));
        for (const std::string& problem : m_macro.problems) tell(problem);
        return m_macro.problems.empty();
    }

    void runCommands() {
        m_stopButton.arm(m_host);
        m_isRunning = true;
        for (const MacroCommand& command : m_macro.commands) {
            m_current = &command;
            runCommand(command);
            m_isStopped = m_stopButton.isPressed();
            if (m_isStopped || (m_failed > 0 && !m_options.keepGoing)) break;
        }
        if (m_isStopped) tell(currentPlace(), "stopped");
        m_current = nullptr;
        m_summary = counted(m_run, "command") + " run, " + std::to_string(m_failed) + " failed";
    }

    void runCommand(const MacroCommand& command) {
        if (m_options.verbose) tell(m_macro.place(command.line), command.addOnId + ' ' + command.text);
        const auto begin = std::chrono::steady_clock::now();
        const standin::CommandResult result =
            inTime(m_host, 1, [&] { return m_host.run(command.addOnId, command.text, m_macro.place(command.line)); });
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - begin;
        ++m_run;
        m_findings.tellNew();
        addResult(command, result.accepted, std::string(withoutTrailingBlanks(result.error)), time.count());
        if (result.accepted) return;
        ++m_failed;
        tell(placeOf(command), failureText(result));
    }

    void addResult(const MacroCommand& command, bool accepted, const std::string& error, double seconds) {
        m_results.add({m_macro.place(command.line), command.addOnId, command.text, accepted, error, seconds}, m_host);
    }

    bool writeOutputs() {
        m_isRunning = false;
        return m_outputs.write(m_host, m_summary);
    }

    // Plays the recording in a new session, as a user does who plays a recorded macro. What is printed, and the dialogs
    // and the status line, were seen before.
    bool replayRecording() {
        const std::vector<standin::RecordedCommand> recorded = m_host.recordedCommands();
        if (recorded.empty()) return true;
        const DiscardedOutput discarded;
        standin::Host session;
        session.setChecking(false);
        session.setKeepsCalls(false);
        session.setBatchMode(m_options.batch);
        session.setRecording(true);
        if (m_styles) giveStyles(session, *m_styles);
        const bool loaded = loadAddOnsOf(session);
        m_stopButton.handOver(session);
        for (std::size_t i = 0; loaded && i != recorded.size() && !m_stopButton.isPressed(); ++i) {
            const auto finding = inTime(session, 1, [&] { return replay(session, recorded[i]); });
            if (finding && !m_stopButton.isPressed()) m_host.report(*finding);
            m_findings.tellNew();
        }
        m_isStopped = m_stopButton.isPressed();
        if (m_isStopped) tell(kProgramName, "stopped");
        m_stopButton.handOver(m_host);
        unloadAddOnsOf(session);
        return loaded;
    }

    // Has \p host's add-ons do something that the program does not outlive when it takes longer than \p times the
    // limit.
    template <class Work>
    std::invoke_result_t<Work> inTime(const standin::Host& host, std::size_t times, const Work& work) {
        if (!m_watchdog) return work();
        m_entered = {&host, host.lastCall().call, *m_options.contract.timeout * static_cast<double>(times)};
        const WatchedTime time(*m_watchdog, m_entered.limit);
        return work();
    }

    // The add-on goes on meanwhile, and may hold whatever there is to hold: the standard output, when nobody reads it.
    void endHung() {
        const standin::Finding finding = hangFinding(m_entered.host->lastCall(), m_entered.calls, m_entered.limit);
        std::atomic<bool> isTold{false};
        std::thread([&] {
            std::this_thread::sleep_for(kTimeForLastWords);
            if (!isTold) writeAll(STDERR_FILENO, textOf(finding));
            endProgram();
        }).detach();
        m_findings.tellNew();
        tellLines(textOf(finding));
        isTold = true;
        m_host.report(finding);
        const MacroCommand* const command = m_current;
        if (command != nullptr) addResult(*command, false, "the command has not returned", m_entered.limit.count());
        if (m_isRunning) writeOutputs();
        finish(ExitStatus_e::CommandHung);
        if (m_screen) m_screen->leave();
        endProgram();
    }

    [[noreturn]] static void endProgram() { _exit(static_cast<int>(ExitStatus_e::CommandHung)); }

    void showDialog(const std::string& text) const { tell(currentPlace() + ": dialog", text); }

    void showStatus(const standin::StatusLine& line) {
        if (m_options.batch) return;  // nobody is there to see it
        if (m_screen) {
            m_screen->show(line);
        } else {
            m_plainStatus.show(currentPlace(), line, m_stopButton.isPressed());
        }
    }

    std::string currentPlace() const {
        const MacroCommand* command = m_current;
        return command ? placeOf(*command) : kProgramName;
    }

    std::string placeOf(const MacroCommand& command) const {
        return m_macro.place(command.line) + ": " + command.addOnId;
    }

    // What an add-on is entered for.
    struct Entered {
        const standin::Host* host = nullptr;
        std::size_t calls = 0;  // before it was
        Watchdog::Seconds limit{};
    };

    const RunOptions& m_options;
    MacroFile m_macro;
    std::optional<std::vector<StyleSetting>> m_styles;
    RunOutputs m_outputs;
    bool m_isRunning = false;  // commands run, and what they record is still to be written
    Entered m_entered;
    TraceOutputs m_traces;
    ResultsFile m_results;
    std::size_t m_run = 0;
    std::size_t m_failed = 0;
    bool m_isStopped = false;
    std::string m_summary;
    StopButton m_stopButton;
    PlainStatus m_plainStatus;
    std::optional<Screen> m_screen;
    FindingTeller m_findings{m_host};
    std::optional<Watchdog> m_watchdog;
    // The command that runs, or null. A dialog may come from any thread of an add-on.
    std::atomic<const MacroCommand*> m_current{nullptr};
    // Last: while it is destroyed, its add-ons may still show dialogs, and a status line.
    standin::Host m_host;
};

}  // namespace

ExitStatus_e runMacro(const RunOptions& options) { return MacroRun(options).execute(); }

}  // namespace vexa::runner
