#include "commands/Commands.h"

#include <memory>
#include <string>

#include "commands/report/ReportPage.h"
#include "system/files/OutputTarget.h"
#include "system/files/RunFiles.h"
#include "system/files/WholeOutput.h"
#include "terminal/Console.h"
#include "trace/TraceReader.h"

namespace vexa::runner {
namespace {

constexpr const char* kReportFooter =
    R"(The page needs no other file and no network. If the run was killed, the page
shows the run up to that point.

Example:
  vexa-standin run sweep.macro --addon ./libstats.so --trace sweep.trace
  vexa-standin report sweep.trace -o sweep.html

Exit status:
  0  the page was written, even if the run failed
  2  wrong usage, the file is not a trace, or the page could not be written)";

struct ReportOptions {
    std::string trace;
    std::string output;
};

ExitStatus_e report(const ReportOptions& options) {
    try {
        RunFiles files;
        files.read(options.trace);
        files.write(options.output);
        const std::string page = reportPage(readTrace(options.trace));
        WholeOutput(options.output).replace(page);
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
    command.add(argument("TRACE", "The file that 'run --trace' wrote", &options->trace).require());
    command.add(option({"-o", "--output"}, "FILE.html", "The page", &options->output).require());
    command.run = [options] { return report(*options); };
    return command;
}

}  // namespace vexa::runner
