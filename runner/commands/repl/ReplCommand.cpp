#include "commands/Commands.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "commands/repl/LineReader.h"
#include "commands/repl/Repl.h"
#include "language/Descriptions.h"
#include "options/CommonOptions.h"
#include "options/PrintedOutput.h"
#include "session/RunOutputs.h"
#include "session/Suggestions.h"
#include "session/watch/Death.h"
#include "system/processes/Tracer.h"
#include "terminal/Console.h"
#include "text/Lines.h"

namespace vexa::runner {
namespace {

constexpr const char* kReplFooter =
    R"(A line is a command as in a macro file: the id of an add-on, and a command. The tab
key completes ids and file names, and commands and options if NAME.commands.json
is beside the add-on; the arrow keys show earlier lines. Ctrl-C discards a line,
or stops a task. quit or Ctrl-D ends the program. Other lines:
  :reload          unload the add-ons, and load their files again, after a build
  :findings        show all findings of the session
  :calls           show the host calls of the last command
  :help [COMMAND]  show help; COMMAND is one of these, an id, or an id and a word

Example:
  vexa-standin repl --addon ./libstats.so --record session.macro
  > STATS LOAD FILE = 'wake.txt'

Exit status:
  0  all went well; commands may have failed
  2  wrong usage or input; a file could not be read or written
  5  an add-on ended its process: a crash, exit() or the like)";

constexpr const char* kCrashAtReload =
    "the old code crashed while it was unloaded, perhaps because its file was overwritten; the new file is loaded";

// Works in the watching process: reads the lines of the user, and keeps the recording.
class ReplDesk : public UserWork, private NotesInterface {
public:
    explicit ReplDesk(const ReplOptions& options) : m_options(options) {
        inputsOf(options).write(options.record);
        m_outputs.open(options.record, std::nullopt);
    }

    // Each round has its own process, and ends when the user asks to load the add-ons again.
    ExitStatus_e execute() {
        for (;;) {
            m_descriptions = descriptionsBeside(m_options.addOns);
            m_isReloading = false;
            m_options.inProcess || isTraced() ? runHere() : runWatched();
            if (!m_isReloading) return m_status;
            m_load = Load_e::Again;
        }
    }

    int run(std::size_t, ProcessBox& box, NotesInterface& notes) override {
        return static_cast<int>(checkOutput(runRepl(m_options, m_load, box, notes)));
    }
    NotesInterface* notesOf(std::size_t, std::function<KeptText()>) override { return this; }
    void end(std::size_t, const ProcessBox& box, const ProcessOutcome& outcome) override {
        clearStatusOf(box);
        m_status = static_cast<ExitStatus_e>(outcome.status);
        if (outcome.end == End_e::Left && outcome.areNotesWhole) return;
        if (outcome.end == End_e::Left) {
            runner::tell(kProgramName, "error: a part of the recorded commands was lost");
            m_status = ExitStatus_e::BadUsageOrInput;
            m_isReloading = false;
            return;
        }
        tellDeath(box, outcome);
        if (m_isReloading) return runner::tell(kProgramName, kCrashAtReload);
        m_status = m_outputs.writeWhatIsLeft() ? ExitStatus_e::ProcessEnded : ExitStatus_e::BadUsageOrInput;
    }

private:
    void runHere() {
        const SignalMask unblocked(m_signals.before());
        const auto box = std::make_unique<ProcessBox>();
        m_status = runRepl(m_options, m_load, *box, *this);
    }

    void runWatched() {
        ProcessSetting setting;
        setting.printed = Printed_e::Inherited;
        setting.readsNothing = true;
        setting.showsWholeStacks = m_options.contract.showsStacks;
        runInProcesses(m_signals, 1, setting, *this);
    }

    void tell(char kind, std::string_view text) override {
        switch (kind) {
            case kReloadNote: m_isReloading = true; return;
            case kFindingsNote: m_findings += text; return;
            default: return m_outputs.tell(kind, text);
        }
    }

    std::string ask(char kind, std::string_view text) override {
        if (kind == kEarlierNote) return m_findings;
        if (kind != kLineNote) return m_outputs.ask(kind, text);
        const SignalMask unblocked(m_signals.before());
        if (!m_reader) m_reader.emplace();
        const auto line = m_reader->next(linesOf(std::string(text)), m_descriptions);
        return line ? kLineRead + *line : "";
    }

    const AwaitedSignals m_signals;
    const ReplOptions& m_options;
    RunOutputs m_outputs{[](std::string_view) {}};
    std::optional<LineReader> m_reader;
    Descriptions m_descriptions;  // for the tab key, which without one completes only ids and file names
    std::string m_findings;       // of the add-ons that were unloaded by :reload
    Load_e m_load = Load_e::First;
    bool m_isReloading = false;
    ExitStatus_e m_status = ExitStatus_e::ProcessEnded;
};

}  // namespace

Command replCommand() {
    const auto options = std::make_shared<ReplOptions>();
    Command command{"repl", "Run commands as you type them", kReplFooter};
    command.add(addOnOption(options->addOns).require());
    command.add(styleOption(options->style));
    addHostOption(command, options->contract);
    addStacksOption(command, options->contract);
    command.add(option({"--record"}, "FILE", "Write the commands that the add-ons record", &options->record));
    command.add(flag({"--in-process"}, "Run in this process, for a debugger", &options->inProcess));
    command.check = [options] { refuseSecondStandardInput({"-", options->style.value_or("")}); };
    command.run = [options] {
        return readHostFacts(*options) ? ReplDesk(*options).execute() : ExitStatus_e::BadUsageOrInput;
    };
    return command;
}

}  // namespace vexa::runner
