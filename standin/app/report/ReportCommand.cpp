#include "report/ReportCommand.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

#include "AtomicFile.h"
#include "Console.h"
#include "report/ReportPage.h"
#include "report/TraceReader.h"

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
        std::error_code none;
        if (std::filesystem::equivalent(options.trace, options.output, none)) {
            refuseOutput(options.output, "it is the trace");
        }
        const std::string page = reportPage(readTrace(options.trace));
        AtomicFile(options.output).replace(page);
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
