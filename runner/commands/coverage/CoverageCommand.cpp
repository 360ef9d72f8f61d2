#include "commands/Commands.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "commands/coverage/CoveragePage.h"
#include "commands/coverage/CoverageTable.h"
#include "coverage/CoverageFile.h"
#include "coverage/TraceCoverage.h"
#include "options/CommonOptions.h"
#include "system/files/OutputTarget.h"
#include "system/files/RunFiles.h"
#include "system/files/WholeOutput.h"
#include "terminal/Console.h"
#include "trace/TraceReader.h"

namespace vexa::runner {
namespace {

constexpr const char* kCoverageFooter =
    R"(The input is traces of 'run --trace', and files of the option --coverage of 'run',
'test' and 'check'. The command merges them.

The figures count what the runs have used of the whole contract: host calls,
their outcomes (a call that can answer in two ways has two), and rules that had a
chance to fire. No add-on needs all of it. Set --fail-under to the present total,
so that it cannot fall unnoticed.

Examples:
  vexa-standin run sweep.macro --addon ./libstats.so --trace sweep.trace
  vexa-standin coverage sweep.trace
  vexa-standin test tests/macros --addon ./libstats.so --coverage all.json
  vexa-standin coverage all.json --fail-under 40 -o coverage.html

Exit status:
  0  all went well
  1  with --fail-under: the total is below the limit
  2  wrong usage or input; a file could not be read or written)";

struct CoverageOptions {
    std::vector<std::string> inputs;
    std::optional<std::string> json;
    std::optional<std::string> page;
    std::optional<std::uint64_t> limit;  // in percent
};

// A trace is a JSON array, and a coverage file is a JSON object.
Coverage coverageOfInput(const std::string& file) {
    TraceInput input(file);
    return input.first() == '{' ? coverageIn(input.text(), input.name()) : coverageOfTrace(input.run());
}

ExitStatus_e judge(const CoverageOptions& options, const Share& total) {
    if (!options.limit) return ExitStatus_e::AllWell;
    constexpr std::uint64_t kWhole = 100;
    if (total.seen * kWhole >= *options.limit * total.all) return ExitStatus_e::AllWell;
    tell(kProgramName, "the coverage is " + percentText(total) + " %, below " + std::to_string(*options.limit) + " %");
    return ExitStatus_e::CommandFailed;
}

ExitStatus_e show(const CoverageOptions& options) {
    RunFiles files;
    files.read(options.inputs);
    files.write(options.json);
    files.write(options.page);
    std::optional<WholeOutput> json;
    std::optional<WholeOutput> page;
    if (options.json) json.emplace(*options.json);
    if (options.page) page.emplace(*options.page);
    Coverage coverage;
    for (const std::string& input : options.inputs) merge(coverage, coverageOfInput(input));
    print(coverageTable(coverage));
    if (json) json->replace(coverageText(coverage));
    if (page) page->replace(coveragePage(coverage));
    return judge(options, figuresOf(coverage).total());
}

ExitStatus_e coverage(const CoverageOptions& options) {
    try {
        return show(options);
    } catch (const TraceError& error) {
        tell(error.what());
    } catch (const CoverageError& error) {
        tell(error.what());
    } catch (const OutputError& error) {
        tell(error.what());
    }
    return ExitStatus_e::BadUsageOrInput;
}

}  // namespace

Command coverageCommand() {
    const auto options = std::make_shared<CoverageOptions>();
    constexpr Range kPercent = {0, 100};
    Command command{"coverage", "Show how much of the host's contract runs have used", kCoverageFooter};
    command.add(argument("TRACE", "Traces and coverage files; - reads the standard input", &options->inputs).require());
    command.add(option({"--fail-under"}, "N", "Exit with status 1 if the total is below N percent", &options->limit)
                    .check(kPercent));
    command.add(option({"--json"}, "FILE", "Write the merged coverage as JSON, which this command reads again",
                       &options->json));
    command.add(option({"-o", "--output"}, "FILE.html", "Write the coverage as an HTML page", &options->page));
    command.check = [options] { refuseSecondStandardInput(options->inputs); };
    command.run = [options] { return coverage(*options); };
    return command;
}

}  // namespace vexa::runner
