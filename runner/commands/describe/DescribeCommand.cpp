#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/Commands.h"
#include "commands/describe/TriedDescription.h"
#include "formats/DescriptionText.h"
#include "language/GuessedDescription.h"
#include "options/CommonOptions.h"
#include "options/PrintedOutput.h"
#include "session/Session.h"
#include "session/WatchedWork.h"
#include "system/Descriptor.h"
#include "system/files/RedirectedOutput.h"
#include "terminal/Console.h"
#include "text/Seconds.h"

namespace vexa::runner {
namespace {

constexpr const char* kDescribeFooter = R"(The macros show which commands and options the add-on has. The program runs
variations of them, each in a new session of a stand-in host, to learn the types,
which options are required, and what has to run first. The help of each option says
what is guessed. Defaults and greatest values cannot be guessed: complete the draft,
and let 'vexa-standin check' compare it with the add-on.

The commands run in the current folder, as in 'vexa-standin check'.

Example:
  vexa-standin describe ./libstats.so --macro sweep.macro >libstats.commands.json

Exit status:
  0  the draft was printed
  2  wrong usage or input; the draft could not be written
  4  a command did not return within the limit of --timeout
  5  an add-on ended its process: a crash, exit() or the like)";

constexpr std::chrono::seconds kUsualLimit{10};

struct DescribeOptions : SessionOptions {
    std::string addOn;
    std::vector<std::string> others;
    std::vector<std::string> macros;
};

// Works in the process of the add-on.
class Draft {
public:
    Draft(const DescribeOptions& options, ProcessBox& box) : m_options(options), m_box(box) {}

    ExitStatus_e print() {
        std::optional<std::string> text;
        {
            const Descriptor nowhere(open("/dev/null", O_WRONLY | O_CLOEXEC));
            const RedirectedOutput discarded(STDOUT_FILENO, nowhere.get());
            if (readMacros()) text = draft();
        }
        if (!text) return ExitStatus_e::BadUsageOrInput;
        runner::print(*text);
        return checkOutput(ExitStatus_e::AllWell);
    }

private:
    bool readMacros() {
        const std::unique_ptr<Session> session = newSession();
        if (!session->loadAddOns()) return false;
        m_id = session->host().addOns().front().id;
        bool areReadable = true;
        for (const std::string& macro : m_options.macros) {
            const MacroFile file = session->readMacro(macro, UnknownId_e::IsRead);
            for (const std::string& problem : file.problems) tell(problem);
            areReadable = areReadable && file.problems.empty();
            for (const MacroCommand& command : file.commands) {
                if (command.addOnId == m_id) m_commands.push_back(command.text);
            }
        }
        session->unloadAddOns();
        if (areReadable && m_commands.empty()) tell("no macro has a command of " + m_id);
        return areReadable && !m_commands.empty();
    }

    std::string draft() {
        AddOnDescription description = guessedDescription(m_id, m_commands);
        improve(description, m_commands, [this](const std::vector<std::string>& steps) { return tryOut(steps); });
        return descriptionText(description);
    }

    TriedCommand tryOut(const std::vector<std::string>& steps) {
        const std::unique_ptr<Session> session = newSession();
        session->loadAddOns();
        TriedCommand tried{true, {}};
        for (const std::string& step : steps) {
            session->host().setRecording(&step == &steps.back());
            tried.isAccepted = tried.isAccepted && session->run({"", m_id, step}).accepted;
        }
        for (const standin::RecordedCommand& recorded : session->host().recordedCommands()) {
            tried.recorded.push_back(recorded.addOnId + ' ' + recorded.command);
        }
        session->unloadAddOns();
        return tried;
    }

    std::unique_ptr<Session> newSession() {
        return std::make_unique<Session>(m_options, m_box, [](const Overrun& overrun) {
            tell(overrun.work.text + ": did not return within " + secondsText(overrun.limit));
            return static_cast<int>(ExitStatus_e::CommandHung);
        });
    }

    const DescribeOptions& m_options;
    ProcessBox& m_box;
    std::string m_id;
    std::vector<std::string> m_commands;
};

ExitStatus_e printDraft(DescribeOptions& options) {
    options.addOns = {options.addOn};
    options.addOns.insert(options.addOns.end(), options.others.begin(), options.others.end());
    if (!options.contract.timeout) options.contract.timeout = kUsualLimit;
    return doWatched(options.contract.timeout, [&options](ProcessBox& box) { return Draft(options, box).print(); });
}

}  // namespace

Command describeCommand() {
    const auto options = std::make_shared<DescribeOptions>();
    Command command{"describe", "Draft the description of an add-on's commands, from macros", kDescribeFooter};
    command.add(argument("FILE.so", "The add-on", &options->addOn).require().check(whyNoStream));
    command.add(option({"--macro"}, "FILE", "A macro that runs the add-on's commands; may be given more than once",
                       &options->macros)
                    .require());
    command.add(
        option({"--addon"}, "FILE", "Another add-on that the commands need", &options->others).check(whyNoStream));
    addTimeoutOption(command, options->contract);
    command.run = [options] { return printDraft(*options); };
    return command;
}

}  // namespace vexa::runner
