#include "commands/Commands.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "commands/run/ManyRuns.h"
#include "commands/run/Shard.h"
#include "coverage/CoverageFile.h"
#include "formats/MacroList.h"
#include "formats/ResultsReader.h"
#include "options/CommonOptions.h"
#include "options/UsageError.h"
#include "session/DebugCall.h"
#include "session/ProjectSettings.h"
#include "session/WatchedRun.h"
#include "system/files/OutputTarget.h"
#include "system/files/RunFiles.h"
#include "system/files/StandardStreams.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr const char* kRunFooter = R"(A macro file has one command per line, which starts with the add-on's id. Blank
lines and lines that start with # are skipped:
  # three zones
  STATS LOAD FILE = 'wake.txt'
  STATS MEAN ZONES = '1-3'

The program reports each broken rule of the host's contract at once;
'vexa-standin explain RULE' explains the rule. With --strict, broken rules change
the exit status, and a new session runs the recorded commands again: the add-ons
must accept each command and record the same text.

Project file: vexa-standin.toml, in the current folder or one above. Options on
the command line override it:
  strict = true
  warnings-as-errors = true
  suppress = ["missing-errmsg"]
  timeout = 2.5
  host = "facts.json"

Several macro files run in separate processes, --jobs at a time. Their outputs
appear in the order of the files, followed by a summary. The exit status is the
highest status of all files. Ctrl-C stops all of them.

A list of macro files has one name per line; blank lines are skipped. --shard 2/20
runs the files 2, 22, 42 and so on of all files given. So 20 runs, on any
machines, run each file once. 'vexa-standin results' merges their results.

With --resume, a run that was cut off continues: it skips the macro files that
have results in the --json file, unless Ctrl-C stopped them. The exit status
includes the skipped files. Without a results file, all macro files run.

As an output file, - means the standard output. The add-ons then print on the
standard error output.

Examples:
  vexa-standin run sweep.macro --addon ./libstats.so --record recorded.macro
  vexa-standin run macros/*.macro --addon ./libstats.so --jobs 4 --json results.jsonl
  vexa-standin run @macros.txt --shard 2/20 --addon ./libstats.so --json 2.jsonl

Exit status:
  0    all went well
  1    a command failed
  2    wrong usage or input; a file could not be read or written
  3    with --strict: an add-on broke the host's contract
  4    with --timeout: a command did not return
  5    an add-on ended its process: a crash, exit() or the like
  130  stopped by Ctrl-C; a second Ctrl-C ends the program at once

The add-ons run in a separate process, which the program watches. Under gdb,
lldb, rr, strace and valgrind they run in the program itself.)";

struct RunRequest {
    RunOptions options;               // without the macro file
    std::vector<std::string> macros;  // macro files and lists, as the user wrote them
    std::size_t jobs = 1;
    std::optional<Shard> shard;
    bool resumes = false;
};

// Returns true if the request may run any number of macro files, even if it runs only one.
bool isForSeveral(const RunRequest& request) {
    return request.macros.size() > 1 || isMacroList(request.macros.front()) || request.shard || request.resumes;
}

// Refuses options that several runs at a time cannot share.
void refuseForSeveral(const RunRequest& request) {
    const RunOptions& options = request.options;
    const std::pair<const char*, bool> given[] = {
        {"--record", options.record.has_value()},
        {"--journal", options.journal.has_value()},
        {"--trace", options.trace.events.has_value()},
        {"--trace-text", options.trace.text.has_value()},
        {"--in-process", options.inProcess},
        {"MACROFILE -", std::count_if(request.macros.begin(), request.macros.end(), isStandardInput) > 0},
        {"--style -", options.style && isStandardInput(*options.style)},
    };
    for (const auto& [name, isGiven] : given) {
        if (isGiven) throw UsageError(name + std::string(": works with one macro file only"));
    }
}

// Refuses outputs that a run in two parts cannot write.
void refuseWithResume(const RunOptions& options) {
    if (!options.json || isStream(*options.json)) throw UsageError("--resume: needs --json FILE, the results so far");
    if (options.problems.areWanted()) {
        throw UsageError("--resume cannot be used with --sarif and --annotate, which would lack the files done before");
    }
}

// Adds the facts about the run with which a trace starts.
void completeFacts(RunOptions& options) {
    RunFacts& facts = options.trace.facts;
    facts.macroFile = options.macroFile;
    facts.isStrict = options.contract.isStrict();
    facts.hasTimeLimit = options.contract.timeout.has_value();
    facts.suppressed = options.contract.suppressed;
}

// Throws OutputError if an output would replace an input or another output.
void checkFiles(const RunRequest& request, const std::vector<std::string>& macroFiles) {
    const RunOptions& options = request.options;
    RunFiles files = inputsOf(options);
    for (const std::string& macro : request.macros) {
        if (isMacroList(macro)) files.read(macro.substr(1));
    }
    files.read(macroFiles);
    for (const auto& output :
         {options.record, options.journal, options.trace.events, options.trace.text, options.json, options.coverage}) {
        files.write(output);
    }
    if (options.coverage) checkCoverageFile(*options.coverage);
    noteOutputs(options.problems, files);
}

// Returns the macro files of the shard; of all shards if there is none.
std::vector<std::string> chosenFiles(const RunRequest& request) {
    std::vector<std::string> all = macroFilesOf(request.macros);
    if (!request.shard) return all;
    const auto& [number, count] = *request.shard;
    if (number > all.size()) {
        tell(kProgramName, "shard " + std::to_string(number) + '/' + std::to_string(count) + " is empty, because " +
                               std::to_string(all.size()) + " macro files were given");
    }
    return filesOf(*request.shard, all);
}

ExitStatus_e runAll(RunRequest& request) {
    RunOptions& options = request.options;
    options.debugOptions = debugOptionsOf(options, options.record.has_value(), options.keepGoing);
    const std::vector<std::string> macroFiles = chosenFiles(request);
    checkFiles(request, macroFiles);
    if (request.resumes) return resumeMacros(options, takeUp(*options.json, macroFiles), request.jobs);
    if (isForSeveral(request)) return runMacros(options, macroFiles, request.jobs);
    options.macroFile = macroFiles.front();
    completeFacts(options);
    return runOneMacro(options);
}

ExitStatus_e run(RunRequest& request) {
    try {
        const bool isReady = addProjectFile(request.options.contract) && readHostFacts(request.options);
        return isReady ? runAll(request) : ExitStatus_e::BadUsageOrInput;
    } catch (const MacroListError& error) {
        tell(error.what());
    } catch (const ResultsError& error) {
        tell(error.what());
    }
    return ExitStatus_e::BadUsageOrInput;
}

Option shardOption(std::optional<Shard>& shard) {
    const TakeText take = [&shard](const std::string& text) { shard = shardIn(text); };
    return option({"--shard"}, "I/N", "Run every N-th macro file, starting with file I", take)
        .check([](const std::string& text) { return shardIn(text) ? "" : kExpectedShard; });
}

}  // namespace

Command runCommand() {
    const auto request = std::make_shared<RunRequest>();
    RunOptions& options = request->options;
    Command command{"run", "Run macro files", kRunFooter};
    command.add(argument("MACROFILE", "The macro files; @LIST names a list of them; - reads the standard input",
                         &request->macros)
                    .require());
    command.add(addOnOption(options.addOns).require());
    command.add(styleOption(options.style));
    addHostOption(command, options.contract);
    command.add(option({"--record"}, "FILE", "Write the commands that the add-ons record", &options.record));
    command.add(option({"--journal"}, "FILE", "Write the data-set journal", &options.journal));
    addStrictOptions(command, options.contract);
    addSuppressOptions(command, options.contract);
    addStacksOption(command, options.contract);
    addTimeoutOption(command, options.contract);
    addTraceOptions(command, options.trace);
    command.add(option({"--json"}, "FILE", "Write the results as JSON, one line per command", &options.json));
    command.add(coverageOption(options.coverage));
    addProblemOptions(command, options.problems);
    command.add(jobsOption(request->jobs, "macro files"));
    command.add(shardOption(request->shard));
    command.add(flag({"--resume"}, "Skip the macro files that have results in the --json file, and append to it",
                     &request->resumes));
    command.add(flag({"--batch"}, "Run in batch mode, that is, without a user", &options.batch));
    command.add(flag({"--keep-going"}, "Continue after a failed command", &options.keepGoing));
    command.add(flag({"--in-process"}, "Run in this process, for a debugger", &options.inProcess));
    command.add(flag({"--verbose"}, "Show each command before it runs, and a summary", &options.verbose));
    command.check = [request] {
        if (isForSeveral(*request)) refuseForSeveral(*request);
        if (request->resumes) refuseWithResume(request->options);
        refuseSecondStandardInput({request->macros.front(), request->options.style.value_or("")});
    };
    command.run = [request] { return run(*request); };
    return command;
}

}  // namespace vexa::runner
