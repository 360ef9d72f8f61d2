#include <memory>
#include <string>
#include <utility>

#include "commands/Commands.h"
#include "commands/test/AllocationCounter.h"
#include "commands/test/MacroTests.h"
#include "commands/test/TestWatch.h"
#include "options/CommonOptions.h"
#include "options/UsageError.h"
#include "session/DebugCall.h"
#include "session/ProjectSettings.h"
#include "system/files/StandardStreams.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr const char* kTestFooter = R"(NAME.expected has the expected results of NAME.macro; --accept writes it:
  > STATS MEAN ZONES = '1-3'        a command of the macro
    mean 5.9                        what was printed
  ! dialog: no such zone            a message, a dialog, or a broken rule
  + STATS MEAN ZONES = '1-3'        what was recorded
With --calls, NAME.calls has the expected calls of the host. With --budget,
NAME.budget has how many calls of the host, how many allocations and how many
bytes at once each command may need. All commands run, even after one has
failed. Each macro runs in its own process, in the current folder. --watch tests a macro again when its files change, and all macros when
an add-on or a setting changes.

Example:
  vexa-standin test tests/macros --addon ./libstats.so

Exit status:
  0    all results are as expected, or --accept saved them; or Ctrl-C ended
       --watch
  1    a macro has other results or exceeds its budget, or with --strict an
       add-on broke the contract
  2    wrong usage or input; a file could not be read or written
  130  stopped by Ctrl-C)";

// Refuses what makes sense only once, and reports that would lack the macros that a round does not test.
void refuseWithWatch(const TestOptions& options) {
    if (!options.watches) return;
    const std::pair<bool, const char*> others[] = {{options.accepts, "--accept"},
                                                   {options.junit.has_value(), "--junit"},
                                                   {options.coverage.has_value(), "--coverage"},
                                                   {options.problems.areWanted(), "--sarif and --annotate"},
                                                   {options.inProcess, "--in-process"}};
    for (const auto& [isGiven, name] : others) {
        if (isGiven) throw UsageError(std::string("--watch cannot be used with ") + name);
    }
    if (options.style && isStandardInput(*options.style)) {
        throw UsageError("--watch reads the style file again, so it cannot be the standard input");
    }
}

// In a process that has run another macro, less would be allocated for the first time.
void refuseInOneProcess(const TestOptions& options) {
    if (options.tellsCosts && options.inProcess) {
        throw UsageError("--budget cannot be used with --in-process: each macro needs a process of its own");
    }
}

bool canCount() {
    const std::string reason = prepareToCountAllocations();
    if (!reason.empty()) tell(kProgramName, "error: --budget: " + reason);
    return reason.empty();
}

}  // namespace

Command testCommand() {
    const auto options = std::make_shared<TestOptions>();
    Command command{"test", "Compare the results of macros with the expected results", kTestFooter};
    command.add(argument("MACRO", "Macro files NAME.macro, or folders of them", &options->paths).require());
    command.add(addOnOption(options->addOns).require());
    command.add(flag({"--accept"}, "Save the current results as the expected results", &options->accepts));
    command.add(flag({"--calls"}, "Also compare the calls of the host with NAME.calls", &options->tellsCalls));
    command.add(flag({"--budget"}, "Also compare what each command costs with NAME.budget", &options->tellsCosts));
    command.add(flag({"--watch"}, "Test again when files change, until Ctrl-C", &options->watches));
    command.add(jobsOption(options->jobs, "macros"));
    command.add(styleOption(options->style));
    addHostOption(command, options->contract);
    command.add(option({"--junit"}, "FILE", "Write a JUnit XML report", &options->junit));
    command.add(coverageOption(options->coverage));
    addProblemOptions(command, options->problems);
    addStrictOptions(command, options->contract);
    addSuppressOptions(command, options->contract);
    addStacksOption(command, options->contract);
    addTimeoutOption(command, options->contract);
    command.add(flag({"--in-process"}, "Run in this process, for a debugger", &options->inProcess));
    command.add(flag({"--batch"}, "Run in batch mode, that is, without a user", &options->batch));
    command.check = [options] {
        refuseWithWatch(*options);
        refuseInOneProcess(*options);
    };
    command.run = [options] {
        if (options->tellsCosts && !canCount()) return ExitStatus_e::BadUsageOrInput;
        options->debugOptions = debugOptionsOf(*options, true, true);
        if (options->watches) return watchTests(*options);
        const bool isReady = addProjectFile(options->contract) && readHostFacts(*options);
        return isReady ? testMacros(*options) : ExitStatus_e::BadUsageOrInput;
    };
    return command;
}

}  // namespace vexa::runner
