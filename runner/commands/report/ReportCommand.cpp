#include "commands/Commands.h"

#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "commands/report/PageData.h"
#include "commands/report/ReportPage.h"
#include "options/CommonOptions.h"
#include "system/files/OutputTarget.h"
#include "system/files/RunFiles.h"
#include "system/files/WholeOutput.h"
#include "terminal/Console.h"
#include "trace/TraceReader.h"

namespace vexa::runner {
namespace {

constexpr const char* kReportFooter =
    R"(The page needs no other file and no network. If the run was killed, the page
shows the run up to that point, and the place where it ended as a finding.

The page of a long run has the sums of the whole run, but not all commands and
calls: only the first, the slowest and the failed ones, and those around
findings. A timeline viewer shows the whole trace.

Examples:
  vexa-standin run sweep.macro --addon ./libstats.so --trace sweep.trace
  vexa-standin report sweep.trace -o sweep.html
  vexa-standin report new.trace --compare old.trace -o new.html

Exit status:
  0  the page was written, even if the run failed
  2  wrong usage, the file is not a trace, or the page could not be written)";

struct ReportOptions {
    std::string trace;
    std::string output;
    std::optional<std::string> other;
};

PageData dataOf(const std::string& trace) {
    PageData data;
    TraceInput(trace).visit(data);
    return data;
}

ExitStatus_e report(const ReportOptions& options) {
    try {
        RunFiles files;
        files.read(options.trace);
        files.read(options.other);
        files.write(options.output);
        nlohmann::ordered_json data = dataOf(options.trace).take();
        if (options.other) data["other"] = dataOf(*options.other).summary();
        WholeOutput(options.output).replace(reportPage(data));
        return ExitStatus_e::AllWell;
    } catch (const TraceError& error) {
        tell(error.what());
    } catch (const OutputError& error) {
        tell(error.what());
    }
    return ExitStatus_e::BadUsageOrInput;
}

}  // namespace

Command reportCommand() {
    const auto options = std::make_shared<ReportOptions>();
    Command command{"report", "Make an HTML page from a trace", kReportFooter};
    command.add(
        argument("TRACE", "The file that 'run --trace' wrote; - reads the standard input", &options->trace).require());
    command.add(option({"--compare"}, "TRACE", "Show the differences to this earlier run", &options->other));
    command.add(option({"-o", "--output"}, "FILE.html", "The page", &options->output).require());
    command.check = [options] { refuseSecondStandardInput({options->trace, options->other.value_or("")}); };
    command.run = [options] { return report(*options); };
    return command;
}

}  // namespace vexa::runner
