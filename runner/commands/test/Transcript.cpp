#include "commands/test/Transcript.h"

#include <cstddef>
#include <cstdio>
#include <mutex>
#include <optional>
#include <utility>

#include "commands/test/Budget.h"
#include "commands/test/CommandCosts.h"
#include "coverage/CoverageObserver.h"
#include "options/PrintedOutput.h"
#include "session/DebugCall.h"
#include "session/FindingPrinter.h"
#include "session/watch/WatchedStacks.h"
#include "terminal/Console.h"
#include "text/Lines.h"
#include "text/Seconds.h"
#include "trace/CallLines.h"
#include "trace/TraceOutputs.h"

namespace vexa::runner {
namespace {

// Global, because the standard output needs its buffer until the end of the process.
char theOutputBuffer[BUFSIZ];

std::string marked(const std::string& mark, const std::string& text) {
    std::string lines;
    for (const std::string& line : linesOf(text)) lines += mark + line + '\n';
    return lines;
}

std::string told(const std::string& text) { return marked("! ", std::string(withoutTrailingBlanks(text))); }

class Transcript {
public:
    Transcript(const std::string& macroFile, const TranscriptOptions& options, ProcessBox& box, NotesInterface& notes)
        : m_macroFile(macroFile),
          m_options(options),
          m_notes(notes),
          m_session(options, box, [this](const Overrun& overrun) { return static_cast<int>(conclude(overrun)); }) {
        // Keeps the order of the two outputs, which go to the same place. The add-on must not allocate the buffer.
        std::setvbuf(stdout, theOutputBuffer, _IOLBF, sizeof theOutputBuffer);
        observe();
        m_host.setRecording(true);
        m_host.onDialog([this](const std::string& text) { keepDialog(text); });
    }

    TranscriptEnd_e write(const std::vector<StyleSetting>& styles) {
        giveStyles(m_host, styles);
        if (!loadAll() || !readMacro()) return TranscriptEnd_e::NotRun;
        noteNews();
        for (const MacroCommand& command : m_macro.commands) run(command);
        unload();
        if (!isOutputWhole()) return TranscriptEnd_e::OutputLost;
        if (m_calls) m_notes.tell(kCallsNote, textOf(m_calls->take()));
        if (m_costs) m_notes.tell(kCostsNote, budgetText(m_costs->all()));
        return m_session.isContractBroken() ? TranscriptEnd_e::Broken : TranscriptEnd_e::Whole;
    }

private:
    void observe() {
        if (m_options.coverage) {
            m_traces.add(m_coverage.emplace(coverageSettingOf(m_options.contract), coverageTeller(m_notes)));
        }
        if (m_options.tellsCalls) m_traces.add(m_calls.emplace());
        if (m_options.tellsCosts) m_traces.add(m_costs.emplace());
        m_host.setObserver(m_traces.observer());
    }

    bool loadAll() {
        try {
            for (const std::string& file : m_options.addOns) m_session.loadAddOn(file);
            return true;
        } catch (const standin::LoadError& error) {
            note(error.message() + '\n');
            return false;
        }
    }

    bool readMacro() {
        m_macro = m_session.readMacro(m_macroFile);
        for (const std::string& problem : m_macro.problems) note(problem + '\n');
        return m_macro.problems.empty();
    }

    void run(const MacroCommand& command) {
        note("> " + command.addOnId + ' ' + command.text + '\n');
        const standin::CommandResult result = m_session.run(command);
        noteNews();
        std::string lines;
        if (!result.accepted) lines += told(std::string(failureText(result)));
        for (const standin::RecordedCommand& recorded : m_host.recordedCommands()) {
            lines += "+ " + recorded.addOnId + ' ' + recorded.command + '\n';
        }
        m_host.clearRecordedCommands();
        note(lines);
    }

    void unload() {
        m_session.unloadAddOns();
        std::fflush(stdout);
        const std::string head = "> (unloading)\n";
        const bool hasPrinted = !m_notes.ask(kPrintedNote, head).empty();
        const std::string lines = news();
        if (!lines.empty()) note((hasPrinted ? "" : head) + lines);
    }

    // A dialog may come from any thread of an add-on.
    void keepDialog(const std::string& text) {
        const std::lock_guard<std::mutex> lock(m_guard);
        m_dialogs += told("dialog: " + text);
    }
    std::string takeDialogs() {
        const std::lock_guard<std::mutex> lock(m_guard);
        return std::exchange(m_dialogs, "");
    }

    void noteNews() {
        std::fflush(stdout);
        m_notes.ask(kPrintedNote, "");
        note(news());
    }

    // Returns the dialogs and findings since the last call.
    std::string news() {
        std::string lines = takeDialogs();
        for (const standin::Finding& finding : newFindings(m_host, m_findings)) {
            lines += findingLine(finding);
            explain(finding);
        }
        return lines;
    }

    static std::string findingLine(const standin::Finding& finding) {
        return told(std::string(nameOf(finding.severity)) + ": " + finding.message + " [" + finding.rule + ']');
    }

    // Explains a finding for the user, because the transcript has no places. The first finding of each cause has all
    // details.
    void explain(const standin::Finding& finding, const StackReport& stacks = {}) {
        const std::string debug = m_debugCalls.of(finding);
        const std::string ending = "    more:  vexa-standin explain " + finding.rule + '\n' + debugLine(debug);
        const std::string text = m_causes.add(finding) ? textOf(finding) + ending : briefTextOf(finding);
        m_notes.tell(kExplainedNote, text + textOf(stacks));
        Problem problem = problemOf(finding, m_macroFile);
        problem.debug = debug;
        addStacks(problem, stacks);
        m_notes.tell(kProblemNote, packed(problem));
    }

    // Called on another thread while the add-on still runs. Flushes nothing, because the add-on may hold the standard
    // output.
    TranscriptEnd_e conclude(const Overrun& overrun) {
        m_notes.ask(kPrintedNote, "");
        if (!overrun.finding) {
            note(m_macroFile + ": cannot be read: it did not end within " + secondsText(overrun.limit) + '\n');
            return TranscriptEnd_e::NotRun;
        }
        note(findingLine(*overrun.finding));
        explain(*overrun.finding, askForStacks(m_notes));
        return TranscriptEnd_e::CommandHung;
    }

    void note(const std::string& lines) const { m_notes.tell(kTranscriptNote, lines); }

    const std::string& m_macroFile;
    const TranscriptOptions& m_options;
    NotesInterface& m_notes;
    MacroFile m_macro;
    std::mutex m_guard;
    std::string m_dialogs;
    std::size_t m_findings = 0;  // how many findings were noted
    standin::FindingCauses m_causes;
    DebugCalls m_debugCalls{m_macroFile, m_options.debugOptions};
    std::optional<CoverageObserver> m_coverage;
    std::optional<CallRecorder> m_calls;
    std::optional<CommandCosts> m_costs;
    TraceOutputs m_traces;
    Session m_session;  // last: its add-ons may still show dialogs
    standin::Host& m_host = m_session.host();
};

}  // namespace

TranscriptEnd_e writeTranscript(const std::string& macroFile, const TranscriptOptions& options,
                                const std::vector<StyleSetting>& styles, ProcessBox& box, NotesInterface& notes) {
    return Transcript(macroFile, options, box, notes).write(styles);
}

std::string printedLines(const KeptText& printed) {
    const bool isCut = !printed.text.empty() && printed.text.back() != '\n';
    std::string lines = marked("  ", printed.text);
    if (isCut) lines += "\\ no line end\n";
    if (printed.leftOut > 0) lines += "\\ " + std::to_string(printed.leftOut) + " bytes more are left out\n";
    return lines;
}

}  // namespace vexa::runner
