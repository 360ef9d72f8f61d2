#include "RunCommand.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "MacroRun.h"

namespace vexa::runner {
namespace {

constexpr const char* kRunFooter = R"(Macro file: a command a line, the add-on's id first; blank lines and lines that
begin with # are skipped:
  # three zones
  STATS LOAD FILE = 'wake.txt'
  STATS MEAN ZONES = '1-3'

Breaches of the host's contract are told as they come to light; 'vexa-standin
explain RULE' explains them. With --strict they count, and the commands that the
add-ons record, recorded to a file or not, are run again in a new session: each
must be accepted, and record the same text.

Project file: vexa-standin.toml, here or in a folder above; options go before it:
  strict = true
  warnings-as-errors = true
  suppress = ["missing-errmsg"]
  timeout = 2.5

Example:
  vexa-standin run sweep.mcr --addon ./libstats.so --record recorded.mcr

Exit status:
  0    all went well
  1    a command failed
  2    wrong usage or input; a file could not be read or written
  3    with --strict: an add-on broke the host's contract
  4    with --timeout: a command did not return
  130  stopped by Ctrl-C; a second Ctrl-C ends the program at once)";

// What a trace says of the run.
void completeFacts(RunOptions& options) {
    RunFacts& facts = options.trace.facts;
    facts.macroFile = options.macroFile;
    facts.isStrict = options.contract.isStrict();
    facts.hasTimeLimit = options.contract.timeout.has_value();
    facts.suppressed = options.contract.suppressed;
}

}  // namespace

void addRunCommand(CLI::App& app, Action& chosen) {
    const auto options = std::make_shared<RunOptions>();
    CLI::App& run = *app.add_subcommand("run", "Run a macro file");
    run.footer(kRunFooter);
    run.add_option("MACROFILE", options->macroFile, "The macro file; - reads the standard input")
        ->required()
        ->type_name("");
    addAddOnOption(run, options->addOns);
    addStyleOption(run, options->style);
    run.add_option("--record", options->record, "Write the commands that the add-ons record")->type_name("FILE");
    run.add_option("--journal", options->journal, "Write the data-set journal")->type_name("FILE");
    addStrictOptions(run, options->contract);
    addSuppressOptions(run, options->contract);
    addTimeoutOption(run, options->contract);
    addTraceOptions(run, options->trace);
    run.add_flag("--batch", options->batch, "Tell the add-ons that no user is there");
    run.add_flag("--keep-going", options->keepGoing, "Run on after a failed command");
    run.add_flag("--verbose", options->verbose, "Show each command before it runs, and a summary");
    run.callback([options, &chosen] {
        chosen = [options] {
            if (!addProjectFile(options->contract)) return ExitStatus_e::BadUsageOrInput;
            completeFacts(*options);
            return runMacro(*options);
        };
    });
}

}  // namespace vexa::runner
