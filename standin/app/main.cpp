#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <new>
#include <string>
#include <vector>

#include "Console.h"
#include "ExitStatus.h"
#include "ListCommand.h"
#include "RunCommand.h"

namespace vexa::runner {
namespace {

constexpr const char* kAbout = "Runs add-ons, and macro files of their commands, without the host application.";

constexpr const char* kFooter = "'vexa-standin run --help' shows the options, an example and the exit statuses.";

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

constexpr const char* kListFooter = R"(Exit status:
  0  all went well
  2  wrong usage, or an add-on could not be loaded)";

// An output file must not get the number of a closed standard stream: what add-ons print would end up in it.
void keepStandardStreamsTaken() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) open("/dev/null", O_WRONLY);
    }
}

void addAddOnOption(CLI::App& command, std::vector<std::string>& files) {
    // One file per --addon, so that a macro file behind it is not taken for a second add-on.
    command.add_option("--addon", files, "An add-on to load; may be given more than once")
        ->required()
        ->allow_extra_args(false)
        ->type_name("FILE.so");
}

CLI::App* addRunCommand(CLI::App& app, RunOptions& options) {
    CLI::App* run = app.add_subcommand("run", "Run a macro file");
    run->footer(kRunFooter);
    run->add_option("MACROFILE", options.macroFile, "The macro file; - reads the standard input")
        ->required()
        ->type_name("");
    addAddOnOption(*run, options.addOns);
    run->add_option("--record", options.record, "Write the commands that the add-ons record")->type_name("FILE");
    run->add_option("--journal", options.journal, "Write the data-set journal")->type_name("FILE");
    run->add_flag("--batch", options.batch, "Tell the add-ons that no user is there");
    run->add_flag("--keep-going", options.keepGoing, "Run on after a failed command");
    run->add_flag("--verbose", options.verbose, "Show each command before it runs, and a summary");
    return run;
}

CLI::App* addListCommand(CLI::App& app, std::vector<std::string>& files) {
    CLI::App* list = app.add_subcommand("list", "List add-ons: id, title, file");
    list->footer(kListFooter);
    addAddOnOption(*list, files);
    return list;
}

ExitStatus_e refuseUsage(const CLI::ParseError& error) {
    tell(kProgramName, error.what());
    tell(std::string("run '") + kProgramName + " --help' for the usage");
    return ExitStatus_e::BadUsageOrInput;
}

ExitStatus_e runProgram(int argc, char** argv) {
    RunOptions options;
    std::vector<std::string> listed;
    CLI::App app(kAbout, kProgramName);
    app.set_version_flag("--version", std::string(kProgramName) + ' ' + VEXA_STANDIN_VERSION);
    const CLI::App* run = addRunCommand(app, options);
    const CLI::App* list = addListCommand(app, listed);
    app.footer(kFooter);
    app.require_subcommand(0, 1);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {  // --help or --version
        app.exit(request);
        return ExitStatus_e::AllWell;
    } catch (const CLI::ParseError& error) {
        return refuseUsage(error);
    }
    if (*run) return runMacro(options);
    if (*list) return listAddOns(listed);
    std::fputs(app.help().c_str(), stderr);
    return ExitStatus_e::BadUsageOrInput;
}

// What was printed may still lie in the buffer; a full disk shows only now.
ExitStatus_e checkOutput(ExitStatus_e status) {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
    tell(kProgramName, "the standard output could not be written");
    return ExitStatus_e::BadUsageOrInput;
}

ExitStatus_e guardedMain(int argc, char** argv) {
    try {
        keepStandardStreamsTaken();
        return checkOutput(runProgram(argc, argv));
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "%s: out of memory\n", kProgramName);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: unexpected error: %s\n", kProgramName, error.what());
    } catch (...) {
        std::fprintf(stderr, "%s: unexpected error\n", kProgramName);
    }
    return ExitStatus_e::BadUsageOrInput;
}

}  // namespace
}  // namespace vexa::runner

int main(int argc, char** argv) { return static_cast<int>(vexa::runner::guardedMain(argc, argv)); }
