#include "session/MacroRun.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <set>
#include <utility>
#include <vector>

#include "coverage/CoverageObserver.h"
#include "formats/MacroText.h"
#include "formats/ResultsFile.h"
#include "formats/StyleFile.h"
#include "options/PrintedOutput.h"
#include "options/Refusals.h"
#include "session/CoverageNotes.h"
#include "session/DebugCall.h"
#include "session/FindingPrinter.h"
#include "session/Replay.h"
#include "session/RunOutputs.h"
#include "session/SessionView.h"
#include "session/Stopper.h"
#include "session/Suggestions.h"
#include "session/watch/Death.h"
#include "session/watch/WatchedStacks.h"
#include "system/files/OutputTarget.h"
#include "system/files/RedirectedOutput.h"
#include "system/files/StandardStreams.h"
#include "terminal/Console.h"
#include "terminal/StopButton.h"
#include "terminal/Terminal.h"
#include "text/Counted.h"
#include "text/Seconds.h"

namespace vexa::runner {
namespace {

std::string placeOf(const MacroCommand& command) { return command.place + ": " + command.addOnId; }

// An output that goes to the terminal would mix with the status line.
bool drawsStatus(const RunOptions& options) {
    const auto isShown = [](const auto& output) { return output && isStandardOutput(*output); };
    const auto outputs = {options.json,         options.record,     options.journal,
                          options.trace.events, options.trace.text, options.problems.sarif};
    return !options.batch && std::none_of(outputs.begin(), outputs.end(), isShown) && isTerminal(STDERR_FILENO);
}

class MacroRun {
public:
    MacroRun(const RunOptions& options, ProcessBox& box, NotesInterface& notes)
        : m_options(options),
          m_box(box),
          m_notes(notes),
          m_session(options, box, [this](const Overrun& overrun) { return static_cast<int>(conclude(overrun)); }) {
        m_host.onRecorded([&](const standin::RecordedCommand& command) {
            if (options.record) notes.tell(kRecordedNote, recordingLine(command));
        });
        m_host.onJournaled([&](const standin::JournalEntry& entry) {
            if (options.journal) notes.tell(kJournaledNote, journalLines(entry));
        });
        if (options.record || options.contract.isStrict()) m_host.setRecording(true);
        m_view.show(m_host, !options.batch);
        m_view.endFindingsBy([this](const standin::Finding& finding) { return debugLine(m_debugCalls.of(finding)); });
        if (drawsStatus(options)) m_view.drawStatus([this] { return m_stopButton.isPressed(); }, box.isStatusDrawn);
    }
    ~MacroRun() { m_stopButton.disarm(); }

    ExitStatus_e execute() {
        const ExitStatus_e status = finish(checkOutput(runToEnd()));
        if (m_stopper) m_stopper->ended(status);
        return status;
    }

private:
    ExitStatus_e finish(ExitStatus_e status) {
        tellFindings();
        const ExitStatus_e traced = m_traces.finish(status);
        if (m_options.json) {
            m_notes.tell(kEndNote, endLine(m_options.macroFile, traced, {newResultFindings(), m_hang, debugOfHang()}));
        }
        return traced;
    }

    ExitStatus_e runToEnd() {
        const bool ready = openOutputs() && loadStyle() && m_session.loadAddOns() && readMacro();
        m_view.conclude(true);
        bool written = false;
        if (ready) {
            runCommands();
            written = writeOutputs();
        }
        m_session.unloadAddOns();
        m_view.conclude(true);
        m_view.printFindings();
        if (m_options.contract.isStrict() && written && !m_isStopped) written = replayRecording();
        if (ready) printRestOfFindings(m_host);
        m_session.hintAtLines();
        if (ready && m_options.verbose) tell(m_summary);
        return written ? statusOfRun() : ExitStatus_e::BadUsageOrInput;
    }

    ExitStatus_e statusOfRun() const {
        if (m_isStopped) return ExitStatus_e::Stopped;
        if (m_session.isContractBroken()) return ExitStatus_e::ContractViolated;
        return m_failed == 0 ? ExitStatus_e::AllWell : ExitStatus_e::CommandFailed;
    }

    bool openOutputs() {
        try {
            m_traces.open(m_options.trace, m_box.isWatched() ? Append_e::ByMapping : Append_e::BySystemCall);
            m_box.areTracesOpen = true;
        } catch (const OutputError& error) {
            tell(error.what());
            return false;
        }
        if (m_options.coverage) {
            m_traces.add(m_coverage.emplace(coverageSettingOf(m_options.contract), coverageTeller(m_notes)));
        }
        if (m_options.stop) m_traces.add(m_stopper.emplace(*m_options.stop));
        m_host.setObserver(m_traces.observer());
        m_stopButton.install();
        return true;
    }

    bool loadStyle() {
        if (!m_options.style) return true;
        const auto styles = readStyles(*m_options.style);
        if (!styles) return false;
        m_styles = *styles;
        giveStyles(m_host, m_styles);
        return true;
    }

    bool readMacro() {
        const UnknownId_e unknownId = m_options.keepGoing ? UnknownId_e::IsRead : UnknownId_e::RefusesFile;
        m_macro = m_session.readMacro(m_options.macroFile, unknownId);
        for (const std::string& problem : m_macro.problems) {
            tell(problem);
            tellProblem(problemOf(m_macro.name, problem));
        }
        return m_macro.problems.empty();
    }

    void runCommands() {
        m_ids = m_session.addOnIds();
        m_stopButton.arm(m_host);
        m_isRunning = true;
        m_notes.tell(kBeganNote, "");
        for (const MacroCommand& command : m_macro.commands) {
            m_view.setPlace(placeOf(command));
            runCommand(command);
            m_isStopped = m_stopButton.isPressed();
            if (m_isStopped || (m_failed > 0 && !m_options.keepGoing && !m_host.goesOnAfterFailure())) break;
        }
        if (m_isStopped) tell(m_view.place(), "stopped");
        m_view.setPlace(kProgramName);
        m_summary = counted(m_run, "command") + " run, " + std::to_string(m_failed) + " failed";
    }

    void runCommand(const MacroCommand& command) {
        if (m_options.verbose) tell(command.place, command.addOnId + ' ' + command.text);
        ++m_run;
        if (m_stopper) m_stopper->setCommand(m_run);
        if (m_ids.count(command.addOnId) == 0) return refuse(command);
        const auto begin = std::chrono::steady_clock::now();
        const standin::CommandResult result = m_session.run(command);
        const auto time = std::chrono::steady_clock::now() - begin;
        m_view.conclude(result.accepted);
        m_view.printFindings();
        ResultDetails details;
        if (!result.accepted) {
            details.debug = debugOfFailure();
            details.suggestion = m_suggestions.of(command);
        }
        addResult(command, result, time, details);
        tellFindings();
        if (!result.accepted) tellFailure(command, result, details);
    }

    void tellFailure(const MacroCommand& command, const standin::CommandResult& result, const ResultDetails& details) {
        ++m_failed;
        tell(placeOf(command), withSuggestion(failureWithSource(result), details.suggestion));
        Problem problem = problemOf(command, kCommandFailed, std::string(failureText(result)), result.place.source);
        problem.details = details.suggestion;
        problem.debug = details.debug;
        tellProblem(std::move(problem));
    }

    // `--failure` stops at the first failed command only.
    std::string debugOfFailure() const {
        return m_debugCalls.at(m_failed == 0 ? StopPlace{StopEvent_e::Failure}
                                             : StopPlace{StopEvent_e::Command, "", m_run});
    }

    std::string debugOfHang() const { return m_hang.isEmpty() ? "" : m_debugCalls.at({StopEvent_e::Hang}); }

    void refuse(const MacroCommand& command) {
        ++m_failed;
        const std::string problem = noSuchAddOn(command.addOnId, m_ids);
        addResult(command, {false, problem}, {});
        tell(command.place, problem);
        tellProblem(problemOf(command, kCommandFailed, problem));
    }

    void tellFindings() {
        for (const standin::Finding& finding : newFindings(m_host, m_findingsInProblems)) {
            Problem problem = problemOf(finding, m_options.macroFile);
            problem.debug = m_debugCalls.of(finding);
            if (finding.rule == kCommandTimeout) addStacks(problem, m_hang);
            tellProblem(std::move(problem));
        }
    }

    void tellProblem(Problem problem) {
        if (!m_options.problems.areWanted()) return;
        if (m_options.contract.warningsAsErrors.value_or(false)) problem.severity = standin::Severity_e::Error;
        m_notes.tell(kProblemNote, packed(problem));
    }

    void addResult(const MacroCommand& command, const standin::CommandResult& result,
                   std::chrono::duration<double> time, ResultDetails details = {}) {
        if (!m_options.json) return;
        details.findings = newResultFindings();
        m_notes.tell(kResultNote, resultLine(command, result, time, details));
    }

    // The findings since the last line of the results.
    std::vector<ResultFinding> newResultFindings() {
        std::vector<ResultFinding> findings;
        for (standin::Finding& finding : newFindings(m_host, m_findingsInResults)) {
            std::string debug = m_debugCalls.of(finding);
            findings.push_back({std::move(finding), std::move(debug)});
        }
        return findings;
    }

    bool writeOutputs() {
        m_isRunning = false;
        const std::string answer = m_notes.ask(kWriteNote, "");
        const bool isWritten = !answer.empty() && answer.front() == kWritten;
        if (isWritten) m_summary += answer.substr(1);
        return isWritten;
    }

    // Plays the recording back in a new session, as a user would. Shows no output, dialogs or status line: the user has
    // already seen them.
    bool replayRecording() {
        const std::vector<standin::RecordedCommand> recorded = m_host.recordedCommands();
        if (recorded.empty()) return true;
        const Descriptor nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
        const RedirectedOutput discarded(STDOUT_FILENO, nowhere.get());
        m_host.setCallProgress(nullptr);
        const bool isReplayed = replayInNewSession(recorded);
        m_host.setCallProgress(&m_box.calls);
        return isReplayed;
    }

    bool replayInNewSession(const std::vector<standin::RecordedCommand>& recorded) {
        Session session(m_options, m_box,
                        [this](const Overrun& overrun) { return static_cast<int>(conclude(overrun)); });
        session.host().setChecking(false);
        session.host().setRecording(true);
        giveStyles(session.host(), m_styles);
        const bool loaded = session.loadAddOns();
        m_stopButton.handOver(session.host());
        for (std::size_t i = 0; loaded && i != recorded.size() && !m_stopButton.isPressed(); ++i) {
            const auto finding = replay(session, recorded[i]);
            if (finding && !m_stopButton.isPressed()) m_host.report(*finding);
            m_view.printFindings();
        }
        m_isStopped = m_stopButton.isPressed();
        if (m_isStopped) tell(kProgramName, "stopped");
        m_stopButton.handOver(m_host);
        session.unloadAddOns();
        return loaded;
    }

    // Called on another thread while the add-on still runs.
    ExitStatus_e conclude(const Overrun& overrun) {
        if (m_stopper) m_stopper->hung(overrun);
        const ExitStatus_e status = overrun.finding ? ExitStatus_e::CommandHung : ExitStatus_e::BadUsageOrInput;
        if (overrun.finding) {
            concludeHang(overrun);
        } else {
            tell(m_options.macroFile, "cannot be read: it did not end within " + secondsText(overrun.limit));
        }
        finish(status);
        m_view.leaveTerminal();
        return status;
    }

    void concludeHang(const Overrun& hang) {
        m_view.printFindings();
        printFinding(*hang.finding, debugLine(m_debugCalls.at({StopEvent_e::Hang})));
        m_hang = askForStacks(m_notes);
        tellStacks(m_hang);
        m_host.report(*hang.finding);
        if (!m_isRunning) return;
        addResult(hang.work, {false, "the command has not returned"}, hang.limit, {{}, m_hang, debugOfHang()});
        writeOutputs();
    }

    const RunOptions& m_options;
    ProcessBox& m_box;
    NotesInterface& m_notes;
    std::vector<StyleSetting> m_styles;
    std::set<std::string> m_ids;  // of the loaded add-ons
    MacroFile m_macro;
    bool m_isRunning = false;  // commands run, and their recording is not written yet
    std::optional<CoverageObserver> m_coverage;
    DebugCalls m_debugCalls{m_options.macroFile, m_options.debugOptions};
    std::optional<Stopper> m_stopper;
    TraceOutputs m_traces;
    std::size_t m_findingsInResults = 0;
    std::size_t m_findingsInProblems = 0;
    std::size_t m_run = 0;
    std::size_t m_failed = 0;
    bool m_isStopped = false;
    Suggestions m_suggestions{m_options.addOns};
    StackReport m_hang;  // of a command that did not return
    std::string m_summary;
    StopButton m_stopButton{m_box.isStatusDrawn};
    SessionView m_view;
    Session m_session;  // last: while it is destroyed, its add-ons may still show dialogs
    standin::Host& m_host = m_session.host();
};

}  // namespace

ExitStatus_e runMacro(const RunOptions& options, ProcessBox& box, NotesInterface& notes) {
    return MacroRun(options, box, notes).execute();
}

}  // namespace vexa::runner
