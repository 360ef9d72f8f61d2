#include "test/Transcript.h"

#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <functional>
#include <mutex>
#include <optional>
#include <sstream>
#include <utility>

#include "AddOns.h"
#include "Console.h"
#include "Descriptor.h"
#include "FailureText.h"
#include "FindingTeller.h"
#include "Hang.h"
#include "MacroFile.h"
#include "SeverityName.h"
#include "Watchdog.h"
#include "vexastandin/Host.h"

namespace vexa::runner {
namespace {

std::string marked(const std::string& mark, const std::string& text) {
    std::istringstream in(text);
    std::string lines;
    for (std::string line; std::getline(in, line);) lines += mark + line + '\n';
    return lines;
}

std::string told(const std::string& text) { return marked("! ", std::string(withoutTrailingBlanks(text))); }

class Transcript {
public:
    Transcript(const TranscriptOptions& options, ProcessFiles& files) : m_options(options), m_files(files) {
        dup2(files.out.descriptor(), STDERR_FILENO);  // what is printed comes in its order
        std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
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
        note(news());
        for (const MacroCommand& command : m_macro.commands) run(command);
        unload();
        const ContractOptions& contract = m_options.contract;
        const bool isBroken = contract.isStrict() && hasBreach(m_host, contract.warningsAsErrors.value_or(false));
        return isBroken ? TranscriptEnd_e::Broken : TranscriptEnd_e::Whole;
    }

private:
    bool loadAll() {
        try {
            for (const std::string& file : m_options.addOns) inTime([&] { m_host.loadAddOn(file); });
            return true;
        } catch (const standin::LoadError& error) {
            note(error.message() + '\n');
            return false;
        }
    }

    bool readMacro() {
        m_macro = readMacroFile(m_options.macroFile, loadedIds(m_host));
        for (const std::string& problem : m_macro.problems) note(problem + '\n');
        return m_macro.problems.empty();
    }

    void run(const MacroCommand& command) {
        note("> " + command.addOnId + ' ' + command.text + '\n');
        standin::CommandResult result;
        inTime([&] { result = m_host.run(command.addOnId, command.text, m_macro.place(command.line)); });
        std::string lines = news();
        if (!result.accepted) lines += told(std::string(failureText(result)));
        for (const standin::RecordedCommand& recorded : m_host.recordedCommands()) {
            lines += "+ " + recorded.addOnId + ' ' + recorded.command + '\n';
        }
        m_host.clearRecordedCommands();
        note(lines);
    }

    void unload() {
        inTime([&] { m_host.unloadAddOns(); });
        const std::string lines = news();
        if (!lines.empty()) note("> (unloading)\n" + lines);
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

    // What happened since this was asked last, but for what was recorded.
    std::string news() {
        std::fflush(stdout);
        std::string lines = printedLines(m_files.out.text()) + takeDialogs();
        m_files.out.clear();
        const std::vector<standin::Finding> findings = m_host.violations();
        for (; m_findings < findings.size(); ++m_findings) lines += findingLine(findings[m_findings]);
        return lines;
    }

    static std::string findingLine(const standin::Finding& finding) {
        return told(std::string(nameOf(finding.severity)) + ": " + finding.message + " [" + finding.rule + ']');
    }

    void inTime(const std::function<void()>& work) {
        if (!m_watchdog) return work();
        m_callsBefore = m_host.lastCall().call;
        const WatchedTime time(*m_watchdog, *m_options.contract.timeout);
        work();
    }

    // The add-on goes on meanwhile, and may hold the standard output.
    [[noreturn]] void endHung() {
        const standin::Finding finding = hangFinding(m_host.lastCall(), m_callsBefore, *m_options.contract.timeout);
        note(printedLines(m_files.out.text()) + findingLine(finding));
        _exit(static_cast<int>(TranscriptEnd_e::CommandHung));
    }

    void note(const std::string& lines) const { writeAll(m_files.notes.descriptor(), lines); }

    const TranscriptOptions& m_options;
    ProcessFiles& m_files;
    MacroFile m_macro;
    std::mutex m_guard;
    std::string m_dialogs;
    std::size_t m_findings = 0;  // that were noted
    std::size_t m_callsBefore = 0;
    std::optional<Watchdog> m_watchdog;
    standin::Host m_host;  // last: its add-ons may still show dialogs
};

}  // namespace

TranscriptEnd_e writeTranscript(const TranscriptOptions& options, ProcessFiles& files) {
    return Transcript(options, files).write();
}

std::string printedLines(const std::string& text) {
    const bool isCut = !text.empty() && text.back() != '\n';
    return marked("  ", text) + (isCut ? "\\ no line end\n" : "");
}

}  // namespace vexa::runner
