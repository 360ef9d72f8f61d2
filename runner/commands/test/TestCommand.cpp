#include "commands/Commands.h"

#include <memory>

#include "commands/test/MacroTests.h"
#include "options/CommonOptions.h"
#include "session/ProjectSettings.h"

namespace vexa::runner {
namespace {

constexpr const char* kTestFooter = R"(NAME.expected beside each NAME.macro has what it should do; --accept writes it:
  > STATS MEAN ZONES = '1-3'        a command of the macro
    mean 5.9                        what was printed
  ! dialog: no such zone            a message, a dialog, or a broken rule
  + STATS MEAN ZONES = '1-3'        what was recorded
All commands run, even after one has failed. Each macro runs in a process of its
own, in the current folder.

Example:
  vexa-standin test tests/macros --addon ./libstats.so

Exit status:
  0    all macros did what is expected, or --accept wrote what they did
  1    a macro did not, or with --strict an add-on broke the contract
  2    wrong usage or input; a file could not be read or written
  130  stopped by Ctrl-C)";

}  // namespace

Command testCommand() {
    const auto options = std::make_shared<MacroTestOptions>();
    Command command{"test", "Compare what macros do with what is expected of them", kTestFooter};
    command.add(argument("MACRO", "Folders of macros, NAME.macro, or such files", &options->paths).require());
    command.add(addOnOption(options->addOns).require());
    command.add(flag({"--accept"}, "Expect from now on what they do now", &options->accepts));
    command.add(jobsOption(options->jobs, "macros"));
    command.add(styleOption(options->style));
    command.add(option({"--junit"}, "FILE", "Write a report in the form of JUnit", &options->junit));
    addStrictOptions(command, options->contract);
    addSuppressOptions(command, options->contract);
    addTimeoutOption(command, options->contract);
    command.add(flag({"--in-process"}, "Run in this process, for a debugger", &options->inProcess));
    command.add(flag({"--batch"}, "Tell the add-ons that no user is there", &options->batch));
    command.run = [options] {
        if (!addProjectFile(options->contract)) return ExitStatus_e::BadUsageOrInput;
        return testMacros(*options);
    };
    return command;
}

}  // namespace vexa::runner
