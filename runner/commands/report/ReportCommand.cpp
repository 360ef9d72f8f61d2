#include "commands/report/ReportCommand.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "commands/report/ReportPage.h"
#include "commands/report/TraceReader.h"
#include "system/files/OutputTarget.h"
#include "system/files/RunFiles.h"
#include "system/files/WholeOutput.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr const char* kReportFooter =
    R"(The page needs no other file, and no network. The trace of a run that was killed
is shown up to there.

Example:
  vexa-standin run sweep.macro --addon ./libstats.so --trace sweep.trace
  vexa-standin report sweep.trace -o sweep.html

Exit status:
  0  the page was written, whatever became of the run
  2  wrong usage, the file is no trace, or the page could not be written)";

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

void addReportCommand(CLI::App& app, Action& chosen) {
    const auto options = std::make_shared<ReportOptions>();
    CLI::App& command = *app.add_subcommand("report", "Make a page of a trace, for browsers");
    command.footer(kReportFooter);
    command.add_option("TRACE", options->trace, "What 'run --trace' wrote")->required()->type_name("");
    command.add_option("-o,--output", options->output, "The page")->required()->type_name("FILE.html");
    command.callback([options, &chosen] { chosen = [options] { return report(*options); }; });
}

}  // namespace vexa::runner
