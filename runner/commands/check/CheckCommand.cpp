#include "commands/check/CheckCommand.h"

#include <CLI/CLI.hpp>
#include <cstddef>
#include <cstdio>
#include <memory>

#include "commands/check/CheckRun.h"
#include "commands/check/tests/TestCatalogue.h"
#include "options/Refusals.h"
#include "terminal/Console.h"
#include "terminal/WrappedText.h"

namespace vexa::runner {
namespace {

constexpr std::size_t kWidth = 80;

constexpr const char* kCheckFooter = R"(Levels:
  1  loading, what the file is made of, and every command by itself
  2  and commands in other orders, other modes of the host, calls of the host
     that fail, the stop button
  3  and allocations that fail, and damaged commands

Example:
  vexa-standin check ./libstats.so --macro sweep.macro --level 3

The commands run in the current folder, and write their files there. A report -
goes to the standard output, and the text to the standard error output then.

Exit status:
  0    passed
  1    a test failed, crashed or timed out
  2    wrong usage or input; a file could not be read or written)";

std::string whyNoTest(const std::string& name) { return findCheckTest(name) != nullptr ? "" : noSuchTest(name); }

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

CLI::Option* addFiles(CLI::App& command, const char* name, std::vector<std::string>& files, const char* help) {
    return command.add_option(name, files, help)->allow_extra_args(false)->type_name("FILE");
}

}  // namespace

void addCheckCommand(CLI::App& app, Action& chosen) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App& command = *app.add_subcommand("check", "Test an add-on thoroughly, in processes of their own");
    command.footer(kCheckFooter);
    const CLI::Validator isNoStream(whyNoStream, "");
    command.add_option("FILE.so", options->addOn, "The add-on")->check(isNoStream)->type_name("");
    addFiles(command, "--macro", options->macros, "A macro of its commands; may be given more than once");
    addFiles(command, "--addon", options->others, "A further add-on, which the macros need")->check(isNoStream);
    command.add_option("--level", options->level, "How thorough to be, 1 to 3")
        ->check(CLI::Range(1, 3))
        ->type_name("N");
    addFiles(command, "--only", options->only, "Run this test, of whatever level; may be given more than once")
        ->check(CLI::Validator(whyNoTest, ""))
        ->type_name("NAME");
    command.add_option("--seed", options->seed, "Of all that is random; the output names the seed taken")
        ->type_name("N");
    command.add_option("--time", options->time, "For how long each test of many cases goes on; 10")
        ->check(CLI::PositiveNumber)
        ->type_name("SECONDS");
    addStyleOption(command, options->style);
    command.add_option("--json", options->json, "Write a report for programs")->type_name("FILE");
    command.add_option("--junit", options->junit, "Write a report in the form of JUnit")->type_name("FILE");
    command.add_option("--sarif", options->sarif, "Write what did not pass in the form SARIF 2.1.0")->type_name("FILE");
    addSuppressOptions(command, options->contract);
    addTimeoutOption(command, options->contract);
    command.add_flag("--warnings-as-errors", options->contract.warningsAsErrors, "Fail also where tests warn");
    command.add_option("-o,--output-dir", options->folder, "Where macros that show a failure are written; .")
        ->check(isNoStream)
        ->type_name("FOLDER");
    command.add_flag("--in-process", options->inProcess, "Run the tests in this process, for a debugger");
    const CLI::Option& list = *command.add_flag("--list", "Explain the tests, and run none");
    command.callback([options, &list, &chosen] {
        const bool isList = list.count() > 0;
        std::vector<std::string> inputs = options->macros;
        inputs.push_back(options->style.value_or(""));
        refuseSecondStandardInput(inputs);
        chosen = [options, isList] { return isList ? listTests() : check(*options); };
    });
}

}  // namespace vexa::runner
