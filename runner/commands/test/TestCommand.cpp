#include "commands/test/TestCommand.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "commands/test/MacroTests.h"

namespace vexa::runner {
namespace {

constexpr const char* kTestFooter = R"(Beside each NAME.macro lies NAME.expected, which --accept writes:
  > STATS MEAN ZONES = '1-3'        a command of the macro
    mean 5.9                        what was printed
  ! dialog: no such zone            what the user was told, and what was broken
  + STATS MEAN ZONES = '1-3'        what was recorded
All commands run, also after one that failed. They run in the current folder,
each macro in a process of its own.

Example:
  vexa-standin test tests/macros --addon ./libstats.so

Exit status:
  0    all did what is expected of them, or --accept took what they did
  1    one did not, or broke the contract with --strict
  2    wrong usage or input; a file could not be read or written
  130  stopped by Ctrl-C)";

}  // namespace

void addTestCommand(CLI::App& app, Action& chosen) {
    const auto options = std::make_shared<MacroTestOptions>();
    CLI::App& command = *app.add_subcommand("test", "Compare what macros do with what is expected of them");
    command.footer(kTestFooter);
    command.add_option("MACRO", options->paths, "Folders of macros, NAME.macro, or such files")
        ->required()
        ->type_name("");
    addAddOnOption(command, options->addOns);
    command.add_flag("--accept", options->accepts, "Expect from now on what they do now");
    addJobsOption(command, options->jobs, "macros");
    addStyleOption(command, options->style);
    command.add_option("--junit", options->junit, "Write a report in the form of JUnit")->type_name("FILE");
    addStrictOptions(command, options->contract);
    addSuppressOptions(command, options->contract);
    addTimeoutOption(command, options->contract);
    command.add_flag("--in-process", options->inProcess, "Run in this process, for a debugger");
    command.add_flag("--batch", options->batch, "Tell the add-ons that no user is there");
    command.callback([options, &chosen] {
        chosen = [options] {
            if (!addProjectFile(options->contract)) return ExitStatus_e::BadUsageOrInput;
            return testMacros(*options);
        };
    });
}

}  // namespace vexa::runner
