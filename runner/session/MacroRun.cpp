#include "session/MacroRun.h"

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <set>
#include <string_view>
#include <type_traits>
#include <utility>

#include "formats/MacroFile.h"
#include "formats/MacroText.h"
#include "formats/ResultsFile.h"
#include "formats/StyleFile.h"
#include "session/AddOns.h"
#include "session/FailureText.h"
#include "session/FindingTeller.h"
#include "session/Hang.h"
#include "session/Replay.h"
#include "session/RunNotes.h"
#include "session/Watchdog.h"
#include "system/files/OutputTarget.h"
#include "system/files/StandardStreams.h"
#include "terminal/Console.h"
#include "terminal/DiscardedOutput.h"
#include "terminal/PlainStatus.h"
#include "terminal/PrintedOutput.h"
#include "terminal/Screen.h"
#include "terminal/StopButton.h"
#include "terminal/Terminal.h"
#include "text/Seconds.h"
#include "vexastandin/Host.h"

namespace vexa::runner {
namespace {

constexpr std::chrono::seconds kTimeForLastWords{5};

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

// Has the calls of another host counted where those of \p host are, as long as this lives.
class OtherHostCounted {
public:
    OtherHostCounted(standin::Host& host, ProcessBox& box) : m_host(host), m_box(box) {
        host.setCallProgress(nullptr);
        box.calls.calls = 0;
    }
    OtherHostCounted(const OtherHostCounted&) = delete;
    OtherHostCounted& operator=(const OtherHostCounted&) = delete;
    ~OtherHostCounted() { m_host.setCallProgress(&m_box.calls); }

private:
    standin::Host& m_host;
    ProcessBox& m_box;
};

class MacroRun {
public:
    MacroRun(const RunOptions& options, ProcessBox& box, NotesInterface& notes)
        : m_options(options), m_box(box), m_notes(notes) {
        m_host.setCallProgress(&box.calls);
        m_host.onRecorded([&](const standin::RecordedCommand& command) {
            if (options.record) notes.tell(kRecordedNote, recordingLine(command));
        });
        m_host.onJournaled([&](const standin::JournalEntry& entry) {
            if (options.journal) notes.tell(kJournaledNote, journalLines(entry));
        });
        m_host.setKeepsCalls(false);
        m_host.setBatchMode(options.batch);
        m_host.setRecording(options.record || options.contract.isStrict());
        for (const std::string& rule : options.contract.suppressed) m_host.suppress(rule);
        m_host.onDialog([this](const std::string& text) { showDialog(text); });
        m_host.onStatus([this](const standin::StatusLine& line) { showStatus(line); });
        if (drawsStatus()) m_screen.emplace([this] { return m_stopButton.isPressed(); }, box.isStatusDrawn);
        if (options.contract.timeout) m_watchdog.emplace([this] { endHung(); });
    }
    MacroRun(const MacroRun&) = delete;
    MacroRun& operator=(const MacroRun&) = delete;
    ~MacroRun() { m_stopButton.disarm(); }

    ExitStatus_e execute() { return finish(checkOutput(runToEnd())); }

private:
    // An output on the standard output may come between, in the same terminal.
    bool drawsStatus() const {
        const auto isShown = [](const auto& output) { return output && isStandardOutput(*output); };
        const TraceOptions& trace = m_options.trace;
        const auto outputs = {m_options.json, m_options.record, m_options.journal, trace.events, trace.text};
        const bool showsOutput = std::any_of(outputs.begin(), outputs.end(), isShown);
        return !m_options.batch && !showsOutput && isTerminal(STDERR_FILENO);
    }

    ExitStatus_e finish(ExitStatus_e status) {
        const ExitStatus_e traced = m_traces.finish(status);
        if (m_options.json) m_notes.tell(kEndNote, endLine(m_options.macroFile, traced, newFindings()));
        return traced;
    }

    ExitStatus_e runToEnd() {
        const bool ready = openOutputs() && loadStyle() && loadAddOnsOf(m_host) && readMacro();
        m_plainStatus.conclude(true);
        bool written = false;
        if (ready) {
            runCommands();
            written = writeOutputs();
        }
        unloadAddOnsOf(m_host);
        m_plainStatus.conclude(true);
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
            m_traces.open(m_options.trace);
        } catch (const OutputError& error) {
            tell(error.what());
            return false;
        }
        m_host.setObserver(m_traces.observer());
        m_stopButton.install();
        return true;
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
            const auto load = [&] { return loadAddOn(host, file); };
            allLoaded &= inTime({&host, "", "", "loading of " + file, 1}, load);
        }
        return allLoaded;
    }

    // There is one call to unload all.
    void unloadAddOnsOf(standin::Host& host) {
        std::string work = "unloading of";
        for (const standin::AddOnInfo& addOn : host.addOns()) work += ' ' + addOn.id;
        inTime({&host, "", "", work, host.addOns().size()}, [&] { host.unloadAddOns(); });
    }

    // A pipe may have no end.
    bool readMacro() {
        const UnknownId_e unknownId = m_options.keepGoing ? UnknownId_e::IsRead : UnknownId_e::RefusesFile;
        m_ids = loadedIds(m_host);
        const auto read = [&] { return readMacroFile(m_options.macroFile, m_ids, unknownId); };
        m_macro = inTime({nullptr, "", "", "reading of " + m_options.macroFile, 1}, read);
        for (const std::string& problem : m_macro.problems) tell(problem);
        return m_macro.problems.empty();
    }

    void runCommands() {
        m_stopButton.arm(m_host);
        m_isRunning = true;
        m_notes.tell(kBeganNote, "");
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
        if (m_options.verbose) tell(command.place, command.addOnId + ' ' + command.text);
        if (m_ids.count(command.addOnId) == 0) return refuse(command);
        const auto begin = std::chrono::steady_clock::now();
        const auto execute = [&] { return m_host.run(command.addOnId, command.text, command.place); };
        const standin::CommandResult result =
            inTime({&m_host, command.place, command.addOnId, command.text, 1}, execute);
        const auto time = std::chrono::steady_clock::now() - begin;
        ++m_run;
        m_plainStatus.conclude(result.accepted);
        m_findings.tellNew();
        addResult(command, result, time);
        if (result.accepted) return;
        ++m_failed;
        tell(placeOf(command), failureText(result));
    }

    void refuse(const MacroCommand& command) {
        ++m_run;
        ++m_failed;
        const std::string problem = noSuchAddOn(command.addOnId, m_ids);
        addResult(command, {false, problem}, {});
        tell(command.place, problem);
    }

    void addResult(const MacroCommand& command, const standin::CommandResult& result,
                   std::chrono::duration<double> time) {
        if (m_options.json) m_notes.tell(kResultNote, resultLine(command, result, time, newFindings()));
    }

    // The findings since the last line of the results. No more than ten of a rule and add-on are kept, so there are
    // few.
    std::vector<standin::Finding> newFindings() {
        const std::vector<standin::Finding> findings = m_host.violations();
        const auto first = findings.begin() + static_cast<std::ptrdiff_t>(m_resultFindings);
        m_resultFindings = findings.size();
        return {first, findings.end()};
    }

    bool writeOutputs() {
        m_isRunning = false;
        const std::string answer = m_notes.ask(kWriteNote, "");
        const bool isWritten = !answer.empty() && answer.front() == kWritten;
        if (isWritten) m_summary += answer.substr(1);
        return isWritten;
    }

    // Plays the recording in a new session, as a user does who plays a recorded macro. What is printed, and the dialogs
    // and the status line, were seen before.
    bool replayRecording() {
        const std::vector<standin::RecordedCommand> recorded = m_host.recordedCommands();
        if (recorded.empty()) return true;
        const DiscardedOutput discarded;
        const OtherHostCounted counted(m_host, m_box);
        standin::Host session;
        session.setCallProgress(&m_box.calls);
        session.setChecking(false);
        session.setKeepsCalls(false);
        session.setBatchMode(m_options.batch);
        session.setRecording(true);
        if (m_styles) giveStyles(session, *m_styles);
        const bool loaded = loadAddOnsOf(session);
        m_stopButton.handOver(session);
        for (std::size_t i = 0; loaded && i != recorded.size() && !m_stopButton.isPressed(); ++i) {
            const standin::RecordedCommand& command = recorded[i];
            const auto playBack = [&] { return replay(session, command); };
            const auto finding =
                inTime({&session, command.recordedAt.macroLine, command.addOnId, command.command, 1}, playBack);
            if (finding && !m_stopButton.isPressed()) m_host.report(*finding);
            m_findings.tellNew();
        }
        m_isStopped = m_stopButton.isPressed();
        if (m_isStopped) tell(kProgramName, "stopped");
        m_stopButton.handOver(m_host);
        unloadAddOnsOf(session);
        return loaded;
    }

    // What add-ons are entered for, or, without a host, what else may not take for ever.
    struct Entered {
        const standin::Host* host = nullptr;
        std::string place;
        std::string addOnId;
        std::string work;
        std::size_t times = 1;  // the limit that it may take
        std::size_t calls = 0;  // before it
    };

    // Calls \p work, which enters add-ons or may have no end. If it takes longer than it may, the process ends.
    template <class Work>
    std::invoke_result_t<Work> inTime(Entered entered, const Work& work) {
        m_entered = std::move(entered);
        const TimeInAddOn time(m_box, m_entered.place, m_entered.addOnId, m_entered.work);
        if (!m_watchdog) return work();
        if (m_entered.host != nullptr) m_entered.calls = m_entered.host->lastCall().call;
        const WatchedTime watched(*m_watchdog, limit());
        const AllowedTime allowed(m_box, limit());
        return work();
    }

    Watchdog::Seconds limit() const { return *m_options.contract.timeout * static_cast<double>(m_entered.times); }

    // The add-on goes on meanwhile, and may hold whatever there is to hold: the standard output, when nobody reads it.
    // Then the process that watches this one ends it.
    void endHung() {
        m_box.allow(kTimeForLastWords);
        if (m_entered.host == nullptr) return endUnread();
        const standin::Finding finding = hangFinding(m_entered.host->lastCall(), m_entered.calls, limit());
        m_findings.tellNew();
        tellFinding(finding);
        m_host.report(finding);
        const MacroCommand* const command = m_current;
        if (command != nullptr) addResult(*command, {false, "the command has not returned"}, limit());
        if (m_isRunning) writeOutputs();
        finish(ExitStatus_e::CommandHung);
        endProgram(ExitStatus_e::CommandHung);
    }

    void endUnread() {
        tell(m_options.macroFile, "cannot be read: it has no end after " + secondsText(limit()));
        finish(ExitStatus_e::BadUsageOrInput);
        endProgram(ExitStatus_e::BadUsageOrInput);
    }

    [[noreturn]] void endProgram(ExitStatus_e status) {
        if (m_screen) m_screen->leave();
        m_box.report(static_cast<int>(status));
        m_box.markLeft();
        _exit(static_cast<int>(status));
    }

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

    static std::string placeOf(const MacroCommand& command) { return command.place + ": " + command.addOnId; }

    const RunOptions& m_options;
    ProcessBox& m_box;
    NotesInterface& m_notes;
    std::set<std::string> m_ids;  // of the loaded add-ons
    MacroFile m_macro;
    std::optional<std::vector<StyleSetting>> m_styles;
    bool m_isRunning = false;  // commands run, and what they record is still to be written
    Entered m_entered;
    TraceOutputs m_traces;
    std::size_t m_resultFindings = 0;  // that the results have
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

ExitStatus_e runMacro(const RunOptions& options, ProcessBox& box, NotesInterface& notes) {
    return MacroRun(options, box, notes).execute();
}

}  // namespace vexa::runner
