#include "commands/repl/Repl.h"

#include <dlfcn.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "commands/repl/DescribedHelp.h"
#include "commands/repl/LastCalls.h"
#include "commands/repl/SeenCommands.h"
#include "formats/MacroText.h"
#include "formats/StyleFile.h"
#include "options/Refusals.h"
#include "session/RunOutputs.h"
#include "session/SessionView.h"
#include "session/Suggestions.h"
#include "terminal/Console.h"
#include "terminal/StopButton.h"
#include "terminal/Terminal.h"
#include "text/Columns.h"
#include "text/NearNames.h"
#include "text/Printable.h"

namespace vexa::runner {
namespace {

constexpr const char* kOldCodeStays =
    "error: the old code stays in this process, and the system's loader would return it instead of the new file. "
    "Start the session again";

// What the session does after a line.
enum class Next_e { Line, Reload, End };

bool isStillLoaded(const std::string& file) {
    const std::string path = file.find('/') == std::string::npos ? "./" + file : file;
    const std::unique_ptr<void, int (*)(void*)> object(dlopen(path.c_str(), RTLD_NOLOAD | RTLD_LAZY), dlclose);
    return object != nullptr;
}

// Each cause has all details once.
std::string textOfAll(const std::vector<standin::Finding>& findings) {
    std::string text;
    standin::FindingCauses causes;
    for (const standin::Finding& finding : findings) {
        text += causes.add(finding) ? textOf(finding) : briefTextOf(finding);
        if (finding.repeats != 0) {
            text += finding.addOnId + ": and " + std::to_string(finding.repeats) + " more [" + finding.rule + "]\n";
        }
    }
    return text;
}

class Repl {
public:
    Repl(const ReplOptions& options, Load_e load, ProcessBox& box, NotesInterface& notes)
        : m_options(options), m_load(load), m_box(box), m_notes(notes), m_session(options, box) {
        if (options.record) m_host.setRecording(true);
        m_host.onRecorded(
            [&](const standin::RecordedCommand& command) { notes.tell(kRecordedNote, recordingLine(command)); });
        m_host.setObserver(&m_calls);
        m_view.show(m_host, true);
    }

    ExitStatus_e execute() {
        const bool isPrepared = prepare();
        if (!isPrepared && m_load == Load_e::First) return ExitStatus_e::BadUsageOrInput;
        m_notes.tell(kBeganNote, "");
        if (readLines() == Next_e::Reload) return unloadToReload();
        const bool isWritten = !m_notes.ask(kWriteNote, "").empty();
        unload();
        return isWritten ? ExitStatus_e::AllWell : ExitStatus_e::BadUsageOrInput;
    }

private:
    // A command of the runner itself.
    struct Own {
        const char* name;
        const char* parameter;
        const char* brief;
        const char* details;
        Next_e next;
        void (Repl::*obey)(const std::string& argument) = nullptr;
    };
    static const std::vector<Own>& all();

    static const Own* ownOf(const std::string& name) {
        for (const Own& own : all()) {
            if (own.name == name || own.name == ':' + name) return &own;
        }
        return nullptr;
    }

    // ---- Loading and unloading

    bool prepare() {
        bool areAllLoaded = !m_options.style || loadStyles(m_host, *m_options.style);
        if (!areAllLoaded && m_load == Load_e::First) return false;
        for (const std::string& file : m_options.addOns) areAllLoaded = load(file) && areAllLoaded;
        m_view.conclude(areAllLoaded);
        m_ids = m_session.addOnIds();
        m_view.printFindings();
        return areAllLoaded;
    }

    bool load(const std::string& file) {
        const bool isAgain = m_load == Load_e::Again;
        try {
            if (isAgain && isStillLoaded(file)) {
                tell(file, kOldCodeStays);
                return false;
            }
            const standin::AddOnInfo addOn = m_session.loadAddOn(file);
            if (isAgain) print(printableLine("loaded " + addOn.id + " from " + addOn.path) + '\n');
            return true;
        } catch (const standin::LoadError& error) {
            tell(error.message());
            if (isAgain) tell(file, "the old code is unloaded, too; ':reload' tries again");
            return false;
        }
    }

    void unload() {
        m_session.unloadAddOns();
        m_view.conclude(true);
        m_view.printFindings();
        m_session.hintAtLines();
    }

    // The old code may crash meanwhile, if its file was overwritten, so the findings so far are kept first.
    ExitStatus_e unloadToReload() {
        m_notes.tell(kReloadNote, "");
        std::size_t kept = 0;
        m_notes.tell(kFindingsNote, textOfAll(newFindings(m_host, kept)));
        unload();
        m_notes.tell(kFindingsNote, textOfAll(newFindings(m_host, kept)));
        return ExitStatus_e::AllWell;
    }

    // ---- Lines

    Next_e readLines() {
        const std::string words = wordsToComplete();
        for (;;) {
            std::fflush(stdout);
            const std::string answer = m_notes.ask(kLineNote, words);
            if (answer.empty()) return Next_e::End;
            const MacroCommand command = commandOfLine(answer.substr(1));
            const Next_e next = command.addOnId.empty() ? Next_e::Line : obey(command);
            if (next != Next_e::Line) return next;
        }
    }

    // Skips ids with unprintable characters, because completed words go to the terminal unchanged.
    std::string wordsToComplete() const {
        std::string words;
        for (const Own& own : all()) words += std::string(own.name) + '\n';
        for (const std::string& id : m_ids) {
            if (printableLine(id) == id) words += id + '\n';
        }
        return words;
    }

    bool isLoaded(const std::string& id) const { return m_ids.count(id) != 0; }

    // The commands of add-ons come first, because macros may use any id.
    Next_e obey(const MacroCommand& command) {
        if (isLoaded(command.addOnId)) {
            run(command);
            return Next_e::Line;
        }
        for (const Own& own : all()) {
            if (own.name != command.addOnId) continue;
            if (own.obey != nullptr) (this->*own.obey)(command.text);
            return own.next;
        }
        if (command.addOnId.front() == ':') {
            tell(noSuchCommand(command.addOnId));
        } else {
            tell(noSuchAddOn(command.addOnId, m_ids) + "; 'help' lists the add-ons");
        }
        return Next_e::Line;
    }

    static std::string noSuchCommand(const std::string& name) {
        std::vector<std::string> names;
        for (const Own& own : all()) names.emplace_back(own.name);
        const std::vector<std::string> near = nearNames(name, names);
        const std::string hint =
            near.empty() ? "':help' lists the commands" : "did you mean " + alternatives(near) + '?';
        return "there is no command '" + name + "'; " + hint;
    }

    // While it runs, Ctrl-C is the stop button and the status line is drawn.
    void run(const MacroCommand& command) {
        if (command.text.empty()) return tell("expected a command after '" + command.addOnId + "'");
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
        if (!result.accepted) {
            tell(command.addOnId, withSuggestion(failureWithSource(result), m_suggestions.of(command)));
        }
        m_seen.add(command.addOnId, command.text, result.accepted);
    }

    // ---- The runner's own commands

    void showFindings(const std::string&) {
        const std::string earlier = m_notes.ask(kEarlierNote, "");
        const std::string now = textOfAll(m_host.violations());
        if (!earlier.empty()) print(printable("before the last :reload:\n" + earlier));
        if (!earlier.empty() && !now.empty()) print("since then:\n");
        print(earlier.empty() && now.empty() ? "no findings\n" : printable(now));
    }

    void showCalls(const std::string&) {
        const std::string text = m_calls.text();
        print(text.empty() ? "no command has run since the add-ons were loaded\n" : text);
    }

    void help(const std::string& about) {
        const CommandOfHelp asked(about);
        const std::optional<standin::AddOnInfo> addOn = find(asked.first);
        const Own* const own = ownOf(asked.first);
        if (asked.first.empty()) {
            helpAll();
        } else if (addOn) {
            helpAddOn(*addOn, asked.second);
        } else if (own != nullptr) {
            print(usageOf(*own) + "\n  " + own->details + '\n');
        } else if (const std::string text = helpOfCommandsNamed(asked.first); !text.empty()) {
            print(text);
        } else {
            tell("there is no command and no add-on '" + asked.first + "'; ':help' lists them");
        }
    }

    std::string helpOfCommandsNamed(const std::string& word) {
        std::string text;
        for (const std::string& id : m_ids) {
            const AddOnDescription* const described = m_suggestions.descriptions().find(id);
            const CommandDescription* const command = described == nullptr ? nullptr : findCommand(*described, word);
            if (command != nullptr) text += helpOfCommand(*described, *command);
        }
        return text;
    }

    // What the user asks about: `:findings`, `STATS`, `STATS MEAN`.
    struct CommandOfHelp {
        explicit CommandOfHelp(const std::string& about) {
            const MacroCommand parts = commandOfLine(about);
            first = parts.addOnId;
            second = commandOfLine(parts.text).addOnId;
        }
        std::string first;
        std::string second;
    };

    std::optional<standin::AddOnInfo> find(const std::string& id) const {
        for (const standin::AddOnInfo& addOn : m_host.addOns()) {
            if (addOn.id == id) return addOn;
        }
        return std::nullopt;
    }

    static std::string usageOf(const Own& own) {
        return std::string(own.name) + (*own.parameter == '\0' ? "" : " ") + own.parameter;
    }

    void helpAll() const {
        std::vector<std::vector<std::string>> rows = {{"ID COMMAND", "run a command of an add-on"}};
        for (const Own& own : all()) rows.push_back({usageOf(own), own.brief});
        print(columnsOf(rows) + "Loaded add-ons:\n");
        for (const standin::AddOnInfo& addOn : m_host.addOns()) print("  " + nameOf(addOn) + '\n');
    }

    static std::string nameOf(const standin::AddOnInfo& addOn) {
        return printableLine(addOn.id + (addOn.title.empty() ? "" : "  ") + addOn.title);
    }

    void helpAddOn(const standin::AddOnInfo& addOn, const std::string& word) {
        print(nameOf(addOn) + "\n  loaded from " + printableLine(addOn.path) + '\n');
        const AddOnDescription* const described = m_suggestions.descriptions().find(addOn.id);
        if (described == nullptr) return helpUndescribed(addOn, word);
        const std::string seen = m_seen.describe(addOn.id, word);
        print(word.empty() ? helpOfAddOn(*described) : helpOfWord(*described, word));
        if (!seen.empty()) print("Commands since the add-on was loaded:\n" + seen);
    }

    static std::string helpOfWord(const AddOnDescription& described, const std::string& word) {
        const CommandDescription* const command = findCommand(described, word);
        if (command != nullptr) return helpOfCommand(described, *command);
        const std::vector<std::string> near = nearNames(word, commandNames(described));
        const std::string hint = near.empty() ? "" : "; did you mean " + alternatives(near) + '?';
        return "  " + printableLine("the description has no command " + word + hint) + '\n';
    }

    void helpUndescribed(const standin::AddOnInfo& addOn, const std::string& word) const {
        const std::string seen = m_seen.describe(addOn.id, word);
        if (seen.empty()) {
            print("  " + printableLine(word.empty() ? "no command" : "no command " + word) +
                  " has run since the add-on was loaded\n");
        } else {
            print("Commands since the add-on was loaded; the host does not know the others:\n" + seen);
        }
    }

    const ReplOptions& m_options;
    const Load_e m_load;
    ProcessBox& m_box;
    NotesInterface& m_notes;
    std::set<std::string> m_ids;
    SeenCommands m_seen;
    Suggestions m_suggestions{m_options.addOns};
    LastCalls m_calls;
    SessionView m_view;
    Session m_session;  // last: while it is destroyed, its add-ons may still show dialogs
    standin::Host& m_host = m_session.host();
};

const std::vector<Repl::Own>& Repl::all() {
    static const std::vector<Own> own = {
        {":reload", "", "unload all add-ons, and load their files again",
         "Use it after a build. The add-ons start in a new process, so that it runs the new files for certain. The\n"
         "  style file is read again. The recording and the findings are kept. If a file cannot be loaded, the "
         "session\n"
         "  goes on without that add-on: the old code is unloaded already. With --in-process there is no new process;\n"
         "  if the old code cannot leave it, the add-on is not loaded.",
         Next_e::Reload},
        {":findings", "", "show all findings of the session",
         "Shows each cause in full once, and one line for each of its other findings.", Next_e::Line,
         &Repl::showFindings},
        {":calls", "", "show the host calls of the last command",
         "Shows the lines that 'run --trace-text' would write: the thread, and the call with its arguments and "
         "result.\n"
         "  A long list is cut.",
         Next_e::Line, &Repl::showCalls},
        {":help", "[COMMAND]", "show this list, or more about a command or an add-on",
         "':help ID' shows what is known of an add-on, and ':help ID WORD' what is known of one of its commands. If a\n"
         "  description is beside the add-on, ':help WORD' does the same.",
         Next_e::Line, &Repl::help},
        {"help", "[COMMAND]", "the same as :help", "The same as :help.", Next_e::Line, &Repl::help},
        {"quit", "", "end the program", "Ends the program, as Ctrl-D does. The recording is written.", Next_e::End},
    };
    return own;
}

}  // namespace

ExitStatus_e runRepl(const ReplOptions& options, Load_e load, ProcessBox& box, NotesInterface& notes) {
    return Repl(options, load, box, notes).execute();
}

}  // namespace vexa::runner
