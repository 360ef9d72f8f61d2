#include <cstddef>
#include <cstdint>
#include <memory>
#include <set>
#include <string>

#include "commands/Commands.h"
#include "formats/DescriptionFile.h"
#include "language/DescribedExamples.h"
#include "language/RandomCases.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr const char* kRandomFooter =
    R"(The macro starts with the commands that must run before others. One random command
in four is wrong in one way, and a comment before it says how: the add-on must refuse
it. The add-on may also refuse other commands. All texts come from the examples of the
description. The same seed gives the same commands on every machine.

Example:
  vexa-standin random stats.commands.json --count 1000 >random.macro
  vexa-standin run random.macro --addon ./libstats.so --keep-going

Exit status:
  0  the macro was printed
  2  wrong usage or input; the macro could not be written)";

constexpr Range kCounts{1, 1000000};

struct RandomOptions {
    std::string file;
    std::uint64_t seed = 1;
    long count = 100;
};

std::string stepsBeforeAll(const AddOnDescription& addOn) {
    std::set<std::string> written;
    std::string lines;
    for (const CommandDescription& command : addOn.commands) {
        for (const std::string& text : command.before) {
            if (written.insert(text).second) lines += addOn.addOn + ' ' + text + '\n';
        }
    }
    return lines;
}

ExitStatus_e printRandom(const RandomOptions& options) {
    const auto addOn = readDescription(options.file);
    if (!addOn || !areExamplesRight(*addOn, options.file)) return ExitStatus_e::BadUsageOrInput;
    if (addOn->commands.empty()) {
        tell(options.file, "describes no command");
        return ExitStatus_e::BadUsageOrInput;
    }
    print("# Random commands of " + addOn->addOn + ", seed " + std::to_string(options.seed) + '\n' +
          stepsBeforeAll(*addOn));
    RandomCases cases(*addOn, options.seed);
    for (long i = 0; i != options.count; ++i) {
        const RandomCase random = cases.next();
        if (!random.mistake.empty()) print("# wrong: " + random.mistake + '\n');
        print(addOn->addOn + ' ' + random.text + '\n');
    }
    return ExitStatus_e::AllWell;
}

}  // namespace

Command randomCommand() {
    const auto options = std::make_shared<RandomOptions>();
    Command command{"random", "Print a macro of random commands, made from their description", kRandomFooter};
    command.add(
        argument("FILE", "The description, NAME.commands.json; - reads the standard input", &options->file).require());
    command.add(option({"--seed"}, "N", "Seed of the random choices (default 1)", &options->seed));
    command.add(
        option({"--count"}, "N", "The number of random commands (default 100)", &options->count).check(kCounts));
    command.run = [options] { return printRandom(*options); };
    return command;
}

}  // namespace vexa::runner
