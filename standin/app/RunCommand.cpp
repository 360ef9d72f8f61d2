#include "RunCommand.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "AddOns.h"
#include "AtomicFile.h"
#include "Console.h"
#include "MacroFile.h"
#include "MacroText.h"
#include "PlainStatus.h"
#include "Screen.h"
#include "StopButton.h"
#include "StyleFile.h"
#include "Terminal.h"
#include "vexastandin/Host.h"

namespace vexa::runner {
namespace {

constexpr const char* kRunFooter = R"(Macro file: a command a line, the add-on's id first; blank lines and lines that
begin with # are skipped:
  # three zones
  STATS LOAD FILE = 'wake.txt'
  STATS MEAN ZONES = '1-3'

Example:
  vexa-standin run sweep.mcr --addon ./libstats.so --record recorded.mcr

Exit status:
  0    all went well
  1    a command failed
  2    wrong usage or input; a file could not be read or written
  130  stopped by Ctrl-C; a second Ctrl-C ends the program at once)";

constexpr std::string_view kFailedSilently = "the command failed without a message";

struct RunOptions {
    std::string macroFile;               // `-` is the standard input
    std::vector<std::string> addOns;     // the files to load
    std::optional<std::string> record;   // where the recorded commands go
    std::optional<std::string> journal;  // where the journal goes
    std::optional<std::string> style;    // the style file
    bool batch = false;                  // the host says that it is in batch mode
    bool keepGoing = false;              // run on after a failed command
    bool verbose = false;                // show each command, and a summary
};

std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + ' ' + noun + (count == 1 ? "" : "s");
}

class MacroRun {
public:
    explicit MacroRun(const RunOptions& options) : m_options(options) {
        m_host.setKeepsCalls(false);
        m_host.setBatchMode(options.batch);
        m_host.setRecording(options.record.has_value());
        m_host.onDialog([this](const std::string& text) { showDialog(text); });
        m_host.onStatus([this](const standin::StatusLine& line) { showStatus(line); });
        if (!options.batch && isTerminal(STDERR_FILENO)) m_screen.emplace([this] { return m_stopButton.isPressed(); });
    }
    MacroRun(const MacroRun&) = delete;
    MacroRun& operator=(const MacroRun&) = delete;
    ~MacroRun() { m_stopButton.disarm(); }

    ExitStatus_e execute() {
        const bool ready = openOutputs() && loadStyle() && loadAddOns(m_host, m_options.addOns) && readMacro();
        bool written = false;
        if (ready) {
            runCommands();
            written = writeOutputs();
        }
        unloadAddOns(m_host);
        if (ready && m_options.verbose) tell(m_summary);
        if (!written) return ExitStatus_e::BadUsageOrInput;
        if (m_isStopped) return ExitStatus_e::Stopped;
        return m_failed == 0 ? ExitStatus_e::AllWell : ExitStatus_e::CommandFailed;
    }

private:
    bool openOutputs() {
        try {
            if (m_options.record) m_record.emplace(*m_options.record);
            if (m_options.journal) m_journal.emplace(*m_options.journal);
        } catch (const OutputError& error) {
            tell(error.what());
            return false;
        }
        std::vector<std::string> incomplete;
        for (const auto* file : {&m_record, &m_journal}) {
            if (*file) incomplete.push_back((*file)->temporary());
        }
        m_stopButton.install(std::move(incomplete));
        const bool same = m_record && m_journal && m_record->target() == m_journal->target();
        if (same) tell(*m_options.journal, "cannot hold both the recording and the journal");
        return !same;
    }

    bool loadStyle() { return !m_options.style || loadStyles(m_host, *m_options.style); }

    bool readMacro() {
        std::set<std::string> addOnIds;
        for (const standin::AddOnInfo& addOn : m_host.addOns()) addOnIds.insert(addOn.id);
        m_macro = readMacroFile(m_options.macroFile, addOnIds);
        for (const std::string& problem : m_macro.problems) tell(problem);
        return m_macro.problems.empty();
    }

    void runCommands() {
        m_stopButton.arm(m_host);
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
        const standin::CommandResult result = m_host.run(command.addOnId, command.text);
        ++m_run;
        for (const std::string& warning : result.warnings) tell(placeOf(command) + ": warning", warning);
        if (result.accepted) return;
        ++m_failed;
        const std::string_view error = withoutTrailingBlanks(result.error);
        tell(placeOf(command), error.empty() ? kFailedSilently : error);
    }

    bool writeOutputs() {
        bool written = true;
        if (m_record) {
            const auto commands = m_host.recordedCommands();
            written &= write(*m_record, recordingText(commands), commands.size(), "recorded");
        }
        if (m_journal) {
            const auto entries = m_host.journalEntries();
            written &= write(*m_journal, journalText(entries), entries.size(), "journaled");
        }
        return written;
    }

    bool write(AtomicFile& file, const std::string& text, std::size_t count, const std::string& how) {
        try {
            file.replace(text);
        } catch (const OutputError& error) {
            tell(error.what());
            return false;
        }
        m_summary += "; " + std::to_string(count) + ' ' + how + " in " + file.path();
        return true;
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

    std::string placeOf(const MacroCommand& command) const {
        return m_macro.place(command.line) + ": " + command.addOnId;
    }

    const RunOptions& m_options;
    MacroFile m_macro;
    std::optional<AtomicFile> m_record;
    std::optional<AtomicFile> m_journal;
    std::size_t m_run = 0;
    std::size_t m_failed = 0;
    bool m_isStopped = false;
    std::string m_summary;
    StopButton m_stopButton;
    PlainStatus m_plainStatus;
    std::optional<Screen> m_screen;
    // The command that runs, or null. A dialog may come from any thread of an add-on.
    std::atomic<const MacroCommand*> m_current{nullptr};
    // Last: while it is destroyed, its add-ons may still show dialogs, and a status line.
    standin::Host m_host;
};

}  // namespace

void addRunCommand(CLI::App& app, Action& chosen) {
    const auto options = std::make_shared<RunOptions>();
    CLI::App& run = *app.add_subcommand("run", "Run a macro file");
    run.footer(kRunFooter);
    run.add_option("MACROFILE", options->macroFile, "The macro file; - reads the standard input")
        ->required()
        ->type_name("");
    addAddOnOption(run, options->addOns);
    addStyleOption(run, options->style);
    run.add_option("--record", options->record, "Write the commands that the add-ons record")->type_name("FILE");
    run.add_option("--journal", options->journal, "Write the data-set journal")->type_name("FILE");
    run.add_flag("--batch", options->batch, "Tell the add-ons that no user is there");
    run.add_flag("--keep-going", options->keepGoing, "Run on after a failed command");
    run.add_flag("--verbose", options->verbose, "Show each command before it runs, and a summary");
    run.callback([options, &chosen] { chosen = [options] { return MacroRun(*options).execute(); }; });
}

}  // namespace vexa::runner
