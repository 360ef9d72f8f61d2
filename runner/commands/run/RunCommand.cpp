#include "commands/run/RunCommand.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "commands/run/ManyRuns.h"
#include "session/WatchedRun.h"
#include "system/files/OutputTarget.h"
#include "system/files/RunFiles.h"
#include "system/files/StandardStreams.h"
#include "terminal/Console.h"

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

Several macro files run each in a process of its own, --jobs of them at a time.
What they print comes in the order of the files, and then a summary; the exit
status is the highest of theirs. Ctrl-C stops all.

An output - is the standard output; what the add-ons print goes to the standard
error output then.

Examples:
  vexa-standin run sweep.macro --addon ./libstats.so --record recorded.macro
  vexa-standin run macros/*.macro --addon ./libstats.so --jobs 4 --json results.jsonl

Exit status:
  0    all went well
  1    a command failed
  2    wrong usage or input; a file could not be read or written
  3    with --strict: an add-on broke the host's contract
  4    with --timeout: a command did not return
  5    an add-on ended its process: a crash, exit() or the like
  130  stopped by Ctrl-C; a second Ctrl-C ends the program at once

The add-ons run in a process of their own, which the program watches. Under gdb,
lldb, rr, strace and valgrind they run in the program itself.)";

struct RunRequest {
    RunOptions options;  // but the macro file
    std::vector<std::string> macroFiles;
    std::size_t jobs = 1;
};

// Refuses options that several runs at a time cannot share.
void refuseForSeveral(const RunRequest& request) {
    const RunOptions& options = request.options;
    const std::pair<const char*, bool> given[] = {
        {"--record", options.record.has_value()},
        {"--journal", options.journal.has_value()},
        {"--trace", options.trace.events.has_value()},
        {"--trace-text", options.trace.text.has_value()},
        {"--in-process", options.inProcess},
        {"MACROFILE -", std::count_if(request.macroFiles.begin(), request.macroFiles.end(), isStandardInput) > 0},
        {"--style -", options.style && isStandardInput(*options.style)},
    };
    for (const auto& [name, isGiven] : given) {
        if (isGiven) throw CLI::ValidationError(name, "goes with one macro file only");
    }
}

// The facts about the run that a trace starts with.
void completeFacts(RunOptions& options) {
    RunFacts& facts = options.trace.facts;
    facts.macroFile = options.macroFile;
    facts.isStrict = options.contract.isStrict();
    facts.hasTimeLimit = options.contract.timeout.has_value();
    facts.suppressed = options.contract.suppressed;
}

// Throws OutputError if an output would replace an input or another output.
void checkFiles(const RunRequest& request) {
    const RunOptions& options = request.options;
    RunFiles files = inputsOf(options);
    files.read(request.macroFiles);
    for (const auto& output :
         {options.record, options.journal, options.trace.events, options.trace.text, options.json}) {
        files.write(output);
    }
}

ExitStatus_e run(RunRequest& request) {
    RunOptions& options = request.options;
    if (!addProjectFile(options.contract)) return ExitStatus_e::BadUsageOrInput;
    checkFiles(request);
    if (request.macroFiles.size() > 1) return runMacros(options, request.macroFiles, request.jobs);
    options.macroFile = request.macroFiles.front();
    completeFacts(options);
    return runOneMacro(options);
}

}  // namespace

void addRunCommand(CLI::App& app, Action& chosen) {
    const auto request = std::make_shared<RunRequest>();
    RunOptions* const options = &request->options;
    CLI::App& command = *app.add_subcommand("run", "Run macro files");
    command.footer(kRunFooter);
    command.add_option("MACROFILE", request->macroFiles, "The macro files; - reads the standard input")
        ->required()
        ->type_name("");
    addAddOnOption(command, options->addOns);
    addStyleOption(command, options->style);
    command.add_option("--record", options->record, "Write the commands that the add-ons record")->type_name("FILE");
    command.add_option("--journal", options->journal, "Write the data-set journal")->type_name("FILE");
    addStrictOptions(command, options->contract);
    addSuppressOptions(command, options->contract);
    addTimeoutOption(command, options->contract);
    addTraceOptions(command, options->trace);
    command.add_option("--json", options->json, "Write results for programs, a line a command")->type_name("FILE");
    addJobsOption(command, request->jobs, "macro files");
    command.add_flag("--batch", options->batch, "Tell the add-ons that no user is there");
    command.add_flag("--keep-going", options->keepGoing, "Run on after a failed command");
    command.add_flag("--in-process", options->inProcess, "Run in this process, for a debugger");
    command.add_flag("--verbose", options->verbose, "Show each command before it runs, and a summary");
    command.callback([request, &chosen] {
        if (request->macroFiles.size() > 1) refuseForSeveral(*request);
        refuseSecondStandardInput({request->macroFiles.front(), request->options.style.value_or("")});
        chosen = [request] { return run(*request); };
    });
}

}  // namespace vexa::runner
