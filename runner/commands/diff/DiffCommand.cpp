#include "commands/Commands.h"

#include <memory>
#include <string>

#include "commands/diff/TraceDifference.h"
#include "options/CommonOptions.h"
#include "terminal/Console.h"
#include "trace/TraceReader.h"

namespace vexa::runner {
namespace {

constexpr const char* kDiffFooter =
    R"(Both kinds of traces can be compared, --trace and --trace-text. The command shows
the first difference with the lines around it, and counts for each command the
lines that were added, are gone, or are in another order. A line is a host call
with its arguments and result, a finding, or how the command ended.

Times, thread numbers and folders do not count. Handles count by the order in
which a command uses them.

Example:
  vexa-standin run sweep.macro --addon ./libstats.so --trace-text old.txt
  vexa-standin diff old.txt new.txt

Exit status:
  0  the traces are equal
  1  they differ
  2  wrong usage; a file cannot be read, or is not a trace)";

struct DiffOptions {
    std::string before;
    std::string now;
};

// A trace as text starts with a comment.
CallLines linesOf(const std::string& file) {
    TraceInput input(file);
    return input.first() == '#' ? callLinesIn(input.text(), input.name()) : callLinesOf(input.run());
}

ExitStatus_e diff(const DiffOptions& options) {
    try {
        const std::string difference = traceDifference(linesOf(options.before), linesOf(options.now));
        print(difference);
        return difference.empty() ? ExitStatus_e::AllWell : ExitStatus_e::CommandFailed;
    } catch (const TraceError& error) {
        tell(error.what());
        return ExitStatus_e::BadUsageOrInput;
    }
}

}  // namespace

Command diffCommand() {
    const auto options = std::make_shared<DiffOptions>();
    Command command{"diff", "Compare the calls in two traces", kDiffFooter};
    command.add(argument("TRACE-A", "The first trace; - reads the standard input", &options->before).require());
    command.add(argument("TRACE-B", "The second trace", &options->now).require());
    command.check = [options] { refuseSecondStandardInput({options->before, options->now}); };
    command.run = [options] { return diff(*options); };
    return command;
}

}  // namespace vexa::runner
