#include "commands/Commands.h"

#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "commands/repl/LineReader.h"
#include "formats/MacroText.h"
#include "formats/StyleFile.h"
#include "options/CommonOptions.h"
#include "options/Refusals.h"
#include "session/RunOutputs.h"
#include "session/Session.h"
#include "session/SessionView.h"
#include "session/watch/Death.h"
#include "system/processes/Tracer.h"
#include "terminal/Console.h"
#include "terminal/StopButton.h"
#include "terminal/Terminal.h"
#include "text/Lines.h"
#include "text/Printable.h"

namespace vexa::runner {
namespace {

constexpr const char* kReplFooter =
    R"(A line is a command as in a macro file: the id of an add-on, and a command. The tab
key completes ids and file names; the arrow keys show earlier lines. Ctrl-C
discards a line, or stops a task. quit or Ctrl-D ends the program.

Example:
  vexa-standin repl --addon ./libstats.so --record session.macro
  > STATS LOAD FILE = 'wake.txt'

Exit status:
  0  all went well; commands may have failed
  2  wrong usage or input; a file could not be read or written
  5  an add-on ended its process: a crash, exit() or the like)";

constexpr const char* kQuit = "quit";
constexpr const char* kHelp = "help";

struct ReplOptions : SessionOptions {
    std::optional<std::string> record;
};

constexpr char kLineNote = 'l';  // asks for a line; the note has the words for completion, one per line
constexpr char kLineRead = 'y';  // the first character of an answer with a line

// Runs the commands. It gets the lines that the user types as answers to notes.
class Repl {
public:
    Repl(const ReplOptions& options, ProcessBox& box, NotesInterface& notes)
        : m_options(options), m_box(box), m_notes(notes), m_session(options, box) {
        if (options.record) m_host.setRecording(true);
        m_host.onRecorded(
            [&](const standin::RecordedCommand& command) { notes.tell(kRecordedNote, recordingLine(command)); });
        m_view.show(m_host, true);
    }

    ExitStatus_e execute() {
        if (!prepare()) return ExitStatus_e::BadUsageOrInput;
        m_notes.tell(kBeganNote, "");
        readLines();
        const bool isWritten = !m_notes.ask(kWriteNote, "").empty();
        m_session.unloadAddOns();
        m_view.conclude(true);
        m_view.printFindings();
        m_session.hintAtLines();
        return isWritten ? ExitStatus_e::AllWell : ExitStatus_e::BadUsageOrInput;
    }

private:
    bool prepare() {
        if (m_options.style && !loadStyles(m_host, *m_options.style)) return false;
        const bool allLoaded = m_session.loadAddOns();
        m_view.conclude(allLoaded);
        m_ids = m_session.addOnIds();
        m_view.printFindings();
        return allLoaded;
    }

    void readLines() {
        std::string words = std::string(kHelp) + '\n' + kQuit + '\n';
        for (const std::string& id : m_ids) {
            // Skips ids with unprintable characters, because completed words go to the terminal unchanged.
            if (printableLine(id) == id) words += id + '\n';
        }
        for (;;) {
            std::fflush(stdout);
            const std::string answer = m_notes.ask(kLineNote, words);
            if (answer.empty()) return;
            const MacroCommand command = commandOfLine(answer.substr(1));
            const bool isEnd = command.addOnId == kQuit && !isLoaded(kQuit);
            if (isEnd) return;
            if (!command.addOnId.empty()) obey(command);
        }
    }

    bool isLoaded(const std::string& id) const { return m_ids.count(id) != 0; }

    void obey(const MacroCommand& command) {
        if (isLoaded(command.addOnId)) {
            if (command.text.empty()) return tell("expected a command after '" + command.addOnId + "'");
            run(command);
        } else if (command.addOnId == kHelp) {
            showHelp();
        } else {
            tell(noSuchAddOn(command.addOnId, m_ids) + "; 'help' lists the add-ons");
        }
    }

    void showHelp() const {
        print("ID COMMAND runs a command of an add-on; quit ends the program. Loaded add-ons:\n");
        for (const standin::AddOnInfo& addOn : m_host.addOns()) {
            print(printableLine("  " + addOn.id + (addOn.title.empty() ? "" : "  ") + addOn.title) + '\n');
        }
    }

    // While it runs, Ctrl-C is the stop button and the status line is drawn.
    void run(const MacroCommand& command) {
        m_view.setPlace(command.addOnId);
        m_host.releaseStop();
        StopButton stopButton(m_box.isStatusDrawn);
        stopButton.install();
        if (isTerminal(STDERR_FILENO)) {
            m_view.drawStatus([&stopButton] { return stopButton.isPressed(); }, m_box.isStatusDrawn);
        }
        stopButton.arm(m_host);
        const standin::CommandResult result = m_session.run(command);
        m_view.stopDrawing();
        m_view.conclude(result.accepted);
        m_view.setPlace(kProgramName);
        m_view.printFindings();
        if (!result.accepted) tell(command.addOnId, failureWithSource(result));
    }

    const ReplOptions& m_options;
    ProcessBox& m_box;
    NotesInterface& m_notes;
    std::set<std::string> m_ids;
    SessionView m_view;
    Session m_session;  // last: while it is destroyed, its add-ons may still show dialogs
    standin::Host& m_host = m_session.host();
};

// Works in the watching process: reads the lines of the user, and keeps the recording.
class ReplDesk : public UserWork, private NotesInterface {
public:
    explicit ReplDesk(const ReplOptions& options) : m_options(options) {
        inputsOf(options).write(options.record);
        m_outputs.open(options.record, std::nullopt);
    }

    ExitStatus_e execute() {
        if (m_options.inProcess || isTraced()) {
            const SignalMask unblocked(m_signals.before());
            const auto box = std::make_unique<ProcessBox>();
            return Repl(m_options, *box, *this).execute();
        }
        ProcessSetting setting;
        setting.printed = Printed_e::Inherited;
        setting.readsNothing = true;
        runInProcesses(m_signals, 1, setting, *this);
        return m_status;
    }

    int run(std::size_t, ProcessBox& box, NotesInterface& notes) override {
        return static_cast<int>(Repl(m_options, box, notes).execute());
    }
    NotesInterface* notesOf(std::size_t, std::function<KeptText()>) override { return this; }
    void end(std::size_t, const ProcessBox& box, const ProcessOutcome& outcome) override {
        clearStatusOf(box);
        m_status = static_cast<ExitStatus_e>(outcome.status);
        if (outcome.end == End_e::Left && outcome.areNotesWhole) return;
        if (outcome.end == End_e::Left) {
            runner::tell(kProgramName, "error: a part of the recorded commands was lost");
            m_status = ExitStatus_e::BadUsageOrInput;
        } else {
            runner::tell(deathText(box, outcome));
            m_status = m_outputs.writeWhatIsLeft() ? ExitStatus_e::ProcessEnded : ExitStatus_e::BadUsageOrInput;
        }
    }

private:
    void tell(char kind, std::string_view text) override { m_outputs.tell(kind, text); }

    std::string ask(char kind, std::string_view text) override {
        if (kind != kLineNote) return m_outputs.ask(kind, text);
        const SignalMask unblocked(m_signals.before());
        if (!m_reader) m_reader.emplace(linesOf(std::string(text)));
        const auto line = m_reader->next();
        return line ? kLineRead + *line : "";
    }

    const AwaitedSignals m_signals;
    const ReplOptions& m_options;
    RunOutputs m_outputs{[](std::string_view) {}};
    std::optional<LineReader> m_reader;
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
