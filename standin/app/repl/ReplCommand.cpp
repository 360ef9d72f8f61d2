#include "repl/ReplCommand.h"

#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "AddOns.h"
#include "Console.h"
#include "FailureText.h"
#include "FindingTeller.h"
#include "MacroFile.h"
#include "PlainStatus.h"
#include "RunOutputs.h"
#include "Screen.h"
#include "StopButton.h"
#include "StyleFile.h"
#include "Terminal.h"
#include "repl/LineReader.h"

namespace vexa::runner {
namespace {

constexpr const char* kReplFooter = R"(A line is a command as macro files have it: the add-on's id, and its command. The
tabulator completes ids and names of files, the arrows bring lines of before
back. Ctrl-C gives a line up, and stops a task; quit or Ctrl-D ends.

Example:
  vexa-standin repl --addon ./libstats.so --record session.macro
  > STATS LOAD FILE = 'wake.txt'

Exit status:
  0  all went well, whatever became of the commands
  2  wrong usage or input; a file could not be read or written)";

constexpr const char* kQuit = "quit";
constexpr const char* kHelp = "help";

struct ReplOptions {
    std::vector<std::string> addOns;
    std::optional<std::string> style;
    std::optional<std::string> record;
};

class Repl {
public:
    explicit Repl(const ReplOptions& options) : m_options(options) {
        m_host.setKeepsCalls(false);
        m_host.setRecording(options.record.has_value());
        m_host.onDialog([this](const std::string& text) { tell(m_place + ": dialog", text); });
        m_host.onStatus([this](const standin::StatusLine& line) { showStatus(line); });
    }

    ExitStatus_e execute() {
        if (!prepare()) return ExitStatus_e::BadUsageOrInput;
        readLines();
        std::string summary;
        const bool isWritten = m_outputs.write(m_host, summary);
        m_host.unloadAddOns();
        m_findings.tellNew();
        return isWritten ? ExitStatus_e::AllWell : ExitStatus_e::BadUsageOrInput;
    }

private:
    bool prepare() {
        try {
            m_outputs.open(m_options.record, std::nullopt);
        } catch (const OutputError& error) {
            tell(error.what());
            return false;
        }
        if (m_options.style && !loadStyles(m_host, *m_options.style)) return false;
        if (!loadAddOns(m_host, m_options.addOns)) return false;
        m_ids = loadedIds(m_host);
        m_findings.tellNew();
        return true;
    }

    void readLines() {
        std::vector<std::string> words(m_ids.begin(), m_ids.end());
        words.insert(words.end(), {kHelp, kQuit});
        const LineReader reader(words);
        while (const auto line = reader.next()) {
            const MacroWords command = macroWords(*line);
            const bool isEnd = command.addOnId == kQuit && !isLoaded(kQuit);
            if (isEnd) break;
            if (!command.addOnId.empty()) obey(command);
        }
    }

    bool isLoaded(const std::string& id) const { return m_ids.count(id) != 0; }

    void obey(const MacroWords& command) {
        if (isLoaded(command.addOnId)) {
            if (command.text.empty()) return tell("a command of '" + command.addOnId + "' was expected after its name");
            run(command);
        } else if (command.addOnId == kHelp) {
            showHelp();
        } else {
            tell("no add-on '" + command.addOnId + "' is loaded; 'help' helps");
        }
    }

    void showHelp() const {
        std::printf("ID COMMAND runs a command of an add-on; quit ends. Loaded are:\n");
        for (const standin::AddOnInfo& addOn : m_host.addOns()) {
            std::printf("  %s%s%s\n", addOn.id.c_str(), addOn.title.empty() ? "" : "  ", addOn.title.c_str());
        }
    }

    // While it runs Ctrl-C is the stop button, and the status line is drawn.
    void run(const MacroWords& command) {
        m_place = command.addOnId;
        m_host.releaseStop();
        StopButton stopButton;
        stopButton.install();
        if (isTerminal(STDERR_FILENO)) m_screen.emplace([&stopButton] { return stopButton.isPressed(); });
        stopButton.arm(m_host);
        const standin::CommandResult result = m_host.run(command.addOnId, command.text);
        m_screen.reset();
        m_place = kProgramName;
        m_findings.tellNew();
        if (!result.accepted) tell(command.addOnId, failureText(result));
    }

    void showStatus(const standin::StatusLine& line) {
        if (m_screen) return m_screen->show(line);
        m_plainStatus.show(m_place, line, m_host.isStopPressed());
    }

    const ReplOptions& m_options;
    std::set<std::string> m_ids;
    std::string m_place = kProgramName;
    RunOutputs m_outputs;
    PlainStatus m_plainStatus;
    std::optional<Screen> m_screen;
    FindingTeller m_findings{m_host};
    standin::Host m_host;  // last: while it is destroyed, its add-ons may still show dialogs
};

}  // namespace

void addReplCommand(CLI::App& app, Action& chosen) {
    const auto options = std::make_shared<ReplOptions>();
    CLI::App& command = *app.add_subcommand("repl", "Run commands as they are typed");
    command.footer(kReplFooter);
    addAddOnOption(command, options->addOns);
    addStyleOption(command, options->style);
    command.add_option("--record", options->record, "Write the commands that the add-ons record")->type_name("FILE");
    command.callback([options, &chosen] { chosen = [options] { return Repl(*options).execute(); }; });
}

}  // namespace vexa::runner
