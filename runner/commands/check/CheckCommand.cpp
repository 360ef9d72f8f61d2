#include "commands/Commands.h"

#include <cstddef>
#include <cstdio>
#include <memory>

#include "commands/check/CheckRun.h"
#include "commands/check/tests/Tests.h"
#include "options/CommonOptions.h"
#include "options/Refusals.h"
#include "terminal/Console.h"
#include "terminal/WrappedText.h"
#include "text/Seconds.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kWidth = 80;

constexpr const char* kCheckFooter = R"(Levels:
  1  loading, the add-on's file, the macros in order, and each command alone
  2  also commands in other orders, other modes of the host, failing host calls,
     the stop button, and the description of the commands
  3  also failing allocations, and damaged commands

Example:
  vexa-standin check ./libstats.so --macro sweep.macro --level 3

The commands run in the current folder and write their files there. As a report
file, - means the standard output. All other output then goes to the standard
error output.

Exit status:
  0    passed
  1    a test failed, crashed or timed out
  2    wrong usage or input; a file could not be read or written)";

std::string whyNoTest(const std::string& name) { return findCheckTest(name) != nullptr ? "" : noSuchTest(name); }

std::string whyNoSeconds(const std::string& text) { return secondsOf(text) ? "" : kExpectedSeconds; }

ExitStatus_e listTests() {
    for (const CheckTest& test : checkTests()) {
        std::printf("%s (level %d)\n%s%s", test.name, test.level, wrapped(test.summary, kWidth, "    ").c_str(),
                    wrapped(test.why, kWidth, "    ").c_str());
    }
    return ExitStatus_e::AllWell;
}

ExitStatus_e check(const CheckOptions& options) {
    if (!options.addOn.empty()) return checkAddOn(options);
    tell(kProgramName, "FILE.so is required");
    return ExitStatus_e::BadUsageOrInput;
}

std::vector<std::string> testNames() {
    std::vector<std::string> names;
    for (const CheckTest& test : checkTests()) names.emplace_back(test.name);
    return names;
}

}  // namespace

Command checkCommand() {
    const auto options = std::make_shared<CheckOptions>();
    const auto isList = std::make_shared<bool>(false);
    constexpr Range kLevels = {1, 3};
    Command command{"check", "Test an add-on without test code, each test in its own process", kCheckFooter};
    command.add(argument("FILE.so", "The add-on", &options->addOn).check(whyNoStream));
    command.add(option({"--macro"}, "FILE", "A macro that runs the add-on's commands; may be given more than once",
                       &options->macros));
    command.add(option({"--describe"}, "FILE",
                       "The description of the add-on's commands (default: NAME.commands.json beside NAME.so)",
                       &options->description));
    command.add(option({"--addon"}, "FILE", "Another add-on that the macros need", &options->session.addOns)
                    .check(whyNoStream));
    command.add(
        option({"--level"}, "N", "How thorough the check is, 1 to 3 (default 2)", &options->level).check(kLevels));
    command.add(
        option({"--only"}, "NAME", "Run only this test, at any level; may be given more than once", &options->only)
            .check(whyNoTest)
            .suggest(testNames()));
    command.add(option({"--seed"}, "N", "Seed of all random numbers; by default a new one, which the check prints",
                       &options->seed));
    command.add(option({"--time"}, "SECONDS", "Time for each test that could run forever (default 10)", &options->time)
                    .check(whyNoSeconds));
    command.add(styleOption(options->session.style));
    addHostOption(command, options->session.contract);
    command.add(option({"--json"}, "FILE", "Write all results as JSON", &options->json));
    command.add(option({"--junit"}, "FILE", "Write a JUnit XML report", &options->junit));
    command.add(coverageOption(options->coverage));
    addProblemOptions(command, options->problems);
    addSuppressOptions(command, options->session.contract);
    addStacksOption(command, options->session.contract);
    addTimeoutOption(command, options->session.contract);
    command.add(flag({"--warnings-as-errors"}, "Also fail if a test warns",
                     switchTo(options->session.contract.warningsAsErrors, true)));
    command.add(option({"-o", "--output-dir"}, "FOLDER", "Folder for macros that reproduce a failure (default .)",
                       &options->folder)
                    .check(whyNoStream));
    command.add(flag({"--in-process"}, "Run the tests in this process, for a debugger", &options->session.inProcess));
    command.add(flag({"--list"}, "Describe the tests and run none of them", isList.get()));
    command.check = [options] {
        std::vector<std::string> inputs = options->macros;
        inputs.push_back(options->session.style.value_or(""));
        inputs.push_back(options->description.value_or(""));
        refuseSecondStandardInput(inputs);
    };
    command.run = [options, isList] { return *isList ? listTests() : check(*options); };
    return command;
}

}  // namespace vexa::runner
