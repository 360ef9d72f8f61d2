#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>
#include <memory>
#include <string>

#include "commands/ListCommand.h"
#include "commands/StyleCommand.h"
#include "commands/check/CheckCommand.h"
#include "commands/explain/ExplainCommand.h"
#include "commands/manual/ManualCommand.h"
#include "commands/new/NewCommand.h"
#include "commands/repl/ReplCommand.h"
#include "commands/report/ReportCommand.h"
#include "commands/run/RunCommand.h"
#include "commands/test/TestCommand.h"
#include "options/ColourOption.h"
#include "options/CommandLine.h"
#include "options/Corrections.h"
#include "options/ExitStatus.h"
#include "options/HelpFormatter.h"
#include "session/watch/UncaughtErrors.h"
#include "system/processes/AwaitedSignals.h"
#include "terminal/Console.h"
#include "terminal/PrintedOutput.h"
#include "terminal/Terminal.h"

namespace vexa::runner {
namespace {

constexpr const char* kAbout = "Runs add-ons, and macro files of their commands, without the host application.";

constexpr const char* kFooter = R"(Examples:
  vexa-standin new wake-probe
  vexa-standin run sweep.macro --addon ./libstats.so --strict

'vexa-standin COMMAND --help' shows the options of a command, examples, and the
exit statuses.)";

// An output file must not get the number of a closed standard stream: what add-ons print would end up in it. What is
// read from such a stream, or printed to it, fails as before; only messages are lost.
void keepStandardStreamsTaken() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", descriptor == STDOUT_FILENO ? O_RDONLY : O_WRONLY);
    }
}

ExitStatus_e refuseUsage(const CLI::App& app, const CLI::ParseError& error) {
    const bool hasUnexpectedWords = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
    tell(kProgramName, hasUnexpectedWords ? unexpectedWords(app) : error.what());
    for (const std::string& correction : corrections(app)) tell(kProgramName, correction);
    std::string command = kProgramName;
    for (const CLI::App* subcommand : app.get_subcommands()) command += ' ' + subcommand->get_name();
    tell("run '" + command + " --help' for the usage");
    return ExitStatus_e::BadUsageOrInput;
}

ExitStatus_e runProgram(int argc, char** argv) {
    Action chosen;
    CLI::App app(kAbout, kProgramName);
    app.formatter(std::make_shared<HelpFormatter>(textColumnsOf(STDOUT_FILENO)));
    app.set_version_flag("--version", std::string(kProgramName) + ' ' + VEXA_STANDIN_VERSION);
    addNewCommand(app, chosen);
    addRunCommand(app, chosen);
    addReplCommand(app, chosen);
    addTestCommand(app, chosen);
    addCheckCommand(app, chosen);
    addReportCommand(app, chosen);
    addExplainCommand(app, chosen);
    addListCommand(app, chosen);
    addStyleCommand(app, chosen);
    addManualCommand(app, chosen);
    addColourOption(app);
    for (CLI::App* const command : app.get_subcommands([](CLI::App*) { return true; })) addColourOption(*command);
    app.footer(kFooter);
    app.require_subcommand(0, 1);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {  // --help or --version
        app.exit(request);
        return ExitStatus_e::AllWell;
    } catch (const CLI::ParseError& error) {
        return refuseUsage(app, error);
    }
    if (chosen) return chosen();
    std::fputs(app.help().c_str(), stderr);
    return ExitStatus_e::BadUsageOrInput;
}

// All is cleaned up by now. So the shell sees what happened.
void endBySignal(int number) {
    std::fflush(stdout);
    std::signal(number, SIG_DFL);
    std::raise(number);
}

int runGuarded(int argc, char** argv) {
    try {
        return printUncaughtErrors([&] {
            keepStandardStreamsTaken();
            std::signal(SIGXFSZ, SIG_IGN);  // a file that becomes too large is an error of the one who writes it
            return static_cast<int>(checkOutput(runProgram(argc, argv)));
        });
    } catch (const EndedBySignal& end) {
        endBySignal(end.signal);
        return kKilledBySignal + end.signal;
    }
}

}  // namespace
}  // namespace vexa::runner

int main(int argc, char** argv) { return vexa::runner::runGuarded(argc, argv); }
