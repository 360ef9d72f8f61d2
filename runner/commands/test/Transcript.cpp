#include "commands/test/Transcript.h"

#include <unistd.h>

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <functional>
#include <mutex>
#include <optional>
#include <sstream>
#include <utility>

#include "formats/MacroFile.h"
#include "session/AddOns.h"
#include "session/FailureText.h"
#include "session/FindingTeller.h"
#include "session/Hang.h"
#include "session/Watchdog.h"
#include "terminal/Console.h"
#include "terminal/PrintedOutput.h"
#include "text/SeverityName.h"
#include "vexastandin/Host.h"

namespace vexa::runner {
namespace {

constexpr std::chrono::seconds kTimeForLastWords{5};

std::string marked(const std::string& mark, const std::string& text) {
    std::istringstream in(text);
    std::string lines;
    for (std::string line; std::getline(in, line);) lines += mark + line + '\n';
    return lines;
}

std::string told(const std::string& text) { return marked("! ", std::string(withoutTrailingBlanks(text))); }

class Transcript {
public:
    Transcript(const TranscriptOptions& options, ProcessBox& box, NotesInterface& notes)
        : m_options(options), m_box(box), m_notes(notes) {
        std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);  // both outputs go to one place: what is printed keeps its order
        m_host.setCallProgress(&box.calls);
        m_host.setKeepsCalls(false);
        m_host.setBatchMode(options.batch);
        m_host.setRecording(true);
        for (const std::string& rule : options.contract.suppressed) m_host.suppress(rule);
        m_host.onDialog([this](const std::string& text) { keepDialog(text); });
        if (options.contract.timeout) m_watchdog.emplace([this] { endHung(); });
    }
    Transcript(const Transcript&) = delete;
    Transcript& operator=(const Transcript&) = delete;
    ~Transcript() = default;

    TranscriptEnd_e write() {
        giveStyles(m_host, m_options.style);
        if (!loadAll() || !readMacro()) return TranscriptEnd_e::NotRun;
        noteNews();
        for (const MacroCommand& command : m_macro.commands) run(command);
        unload();
        if (!isOutputWhole()) return TranscriptEnd_e::OutputLost;
        const ContractOptions& contract = m_options.contract;
        const bool isBroken = contract.isStrict() && hasBreach(m_host, contract.warningsAsErrors.value_or(false));
        return isBroken ? TranscriptEnd_e::Broken : TranscriptEnd_e::Whole;
    }

private:
    bool loadAll() {
        try {
            for (const std::string& file : m_options.addOns) {
                inTime("", "", "loading of " + file, [&] { m_host.loadAddOn(file); });
            }
            return true;
        } catch (const standin::LoadError& error) {
            note(error.message() + '\n');
            return false;
        }
    }

    bool readMacro() {
        const std::string work = "reading of " + m_options.macroFile;
        inTime("", "", work, [&] { m_macro = readMacroFile(m_options.macroFile, loadedIds(m_host)); });
        for (const std::string& problem : m_macro.problems) note(problem + '\n');
        return m_macro.problems.empty();
    }

    void run(const MacroCommand& command) {
        note("> " + command.addOnId + ' ' + command.text + '\n');
        standin::CommandResult result;
        const auto execute = [&] { result = m_host.run(command.addOnId, command.text, command.place); };
        inTime(command.place, command.addOnId, command.text, execute);
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
        std::string work = "unloading of";
        for (const standin::AddOnInfo& addOn : m_host.addOns()) work += ' ' + addOn.id;
        inTime("", "", work, [&] { m_host.unloadAddOns(); });
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

    // What happened since this was asked last, but for what was printed and recorded.
    std::string news() {
        std::string lines = takeDialogs();
        const std::vector<standin::Finding> findings = m_host.violations();
        for (; m_findings < findings.size(); ++m_findings) {
            lines += findingLine(findings[m_findings]);
            explain(findings[m_findings]);
        }
        return lines;
    }

    static std::string findingLine(const standin::Finding& finding) {
        return told(std::string(nameOf(finding.severity)) + ": " + finding.message + " [" + finding.rule + ']');
    }

    // For whoever looks into a failed test: what is compared has no places. Of a cause the first finding has
    // everything.
    void explain(const standin::Finding& finding) {
        const std::string text = m_causes.add(finding)
                                     ? textOf(finding) + "    more:  vexa-standin explain " + finding.rule + '\n'
                                     : briefTextOf(finding);
        m_notes.tell(kExplainedNote, text);
    }

    void inTime(const std::string& place, const std::string& addOnId, const std::string& what,
                const std::function<void()>& work) {
        const TimeInAddOn entered(m_box, place, addOnId, what);
        if (!m_watchdog) return work();
        m_callsBefore = m_host.lastCall().call;
        const WatchedTime time(*m_watchdog, *m_options.contract.timeout);
        const AllowedTime allowed(m_box, *m_options.contract.timeout);
        work();
    }

    // The add-on goes on meanwhile, and may hold the standard output.
    [[noreturn]] void endHung() {
        m_box.allow(kTimeForLastWords);
        const standin::Finding finding = hangFinding(m_host.lastCall(), m_callsBefore, *m_options.contract.timeout);
        m_notes.ask(kPrintedNote, "");
        note(findingLine(finding));
        explain(finding);
        constexpr int kStatus = static_cast<int>(TranscriptEnd_e::CommandHung);
        m_box.report(kStatus);
        m_box.markLeft();
        _exit(kStatus);
    }

    void note(const std::string& lines) const { m_notes.tell(kTranscriptNote, lines); }

    const TranscriptOptions& m_options;
    ProcessBox& m_box;
    NotesInterface& m_notes;
    MacroFile m_macro;
    std::mutex m_guard;
    std::string m_dialogs;
    std::size_t m_findings = 0;  // that were noted
    standin::FindingCauses m_causes;
    std::size_t m_callsBefore = 0;
    std::optional<Watchdog> m_watchdog;
    standin::Host m_host;  // last: its add-ons may still show dialogs
};

}  // namespace

TranscriptEnd_e writeTranscript(const TranscriptOptions& options, ProcessBox& box, NotesInterface& notes) {
    return Transcript(options, box, notes).write();
}

std::string printedLines(const KeptText& printed) {
    const bool isCut = !printed.text.empty() && printed.text.back() != '\n';
    std::string lines = marked("  ", printed.text);
    if (isCut) lines += "\\ no line end\n";
    if (printed.leftOut > 0) lines += "\\ " + std::to_string(printed.leftOut) + " bytes more are left out\n";
    return lines;
}

}  // namespace vexa::runner
