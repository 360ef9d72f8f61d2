#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

#include "commands/Commands.h"
#include "options/CommandLine.h"
#include "options/CommonOptions.h"
#include "options/ExitStatus.h"
#include "options/PrintedOutput.h"
#include "options/UsageError.h"
#include "session/watch/UncaughtErrors.h"
#include "system/processes/AwaitedSignals.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr const char* kAbout = "Runs add-ons and macro files without the host application.";

constexpr const char* kFooter = R"(Examples:
  vexa-standin new wake-probe
  vexa-standin run sweep.macro --addon ./libstats.so --strict

'vexa-standin COMMAND --help' shows the options of a command, examples, and the
exit statuses.)";

// Keeps a file that is opened later from getting the number of a closed standard stream, because the output of add-ons
// would end up in that file. Reading and printing still fail on such a stream; only messages are lost.
void keepStandardStreamsTaken() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", descriptor == STDOUT_FILENO ? O_RDONLY : O_WRONLY);
    }
}

ExitStatus_e tellWrongUsage(const UsageError& error) {
    tell(kProgramName, error.what());
    for (const std::string& suggestion : error.suggestions) tell(kProgramName, suggestion);
    tell("run '" + error.call + " --help' for the usage");
    return ExitStatus_e::BadUsageOrInput;
}

ExitStatus_e runProgram(const std::vector<std::string>& arguments) {
    Command program{kProgramName, kAbout, kFooter};
    program.add(flag({"--version"}, "Display program version information and exit",
                     ShowVersion{std::string(kProgramName) + ' ' + VEXA_STANDIN_VERSION}));
    program.commands = {newCommand(),          runCommand(),      resultsCommand(),       replCommand(),
                        testCommand(),         checkCommand(),    lintCommand(),          lspCommand(),
                        debugCommand(),        attachCommand(),   reportCommand(),        coverageCommand(),
                        diffCommand(),         describeCommand(), docsCommand(),          randomCommand(),
                        explainCommand(),      listCommand(),     styleCommand(),         probeCommand(),
                        compareHostsCommand(), schemaCommand(),   manualCommand(program), debuggedCommand()};
    addOptionsOfAll(program);
    try {
        return parse(program, arguments)();
    } catch (const UsageError& error) {
        return tellWrongUsage(error);
    }
}

// Ends the program by the signal, so that the shell sees the reason. Everything is cleaned up by now.
void endBySignal(int number) {
    std::fflush(stdout);
    std::signal(number, SIG_DFL);
    std::raise(number);
}

int runGuarded(int argc, char** argv) {
    try {
        return printUncaughtErrors([&] {
            keepStandardStreamsTaken();
            std::signal(SIGXFSZ, SIG_IGN);  // writing a file that becomes too large then fails with EFBIG
            return static_cast<int>(checkOutput(runProgram({argv + std::min(argc, 1), argv + argc})));
        });
    } catch (const EndedBySignal& end) {
        endBySignal(end.signal);
        return kKilledBySignal + end.signal;
    }
}

}  // namespace
}  // namespace vexa::runner

int main(int argc, char** argv) { return vexa::runner::runGuarded(argc, argv); }
