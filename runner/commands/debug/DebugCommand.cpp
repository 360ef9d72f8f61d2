#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "commands/Commands.h"
#include "commands/debug/Debugger.h"
#include "options/CommonOptions.h"
#include "options/Refusals.h"
#include "options/UsageError.h"
#include "session/DebugCall.h"
#include "session/ProjectSettings.h"
#include "session/WatchedRun.h"
#include "terminal/Console.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

constexpr const char* kDebugFooter = R"(The debugger stops in the source of the add-on. These options choose the place:
  --rule RULE    the first finding about RULE. In the debugger, 'opened' goes to
                 the call that started the problem; 'seen' goes back
  --call N       the N-th host call; findings and traces have the number
  --command N    the first line that runs for the N-th command of the macro
  --failure      the first command that fails, where its error message was made
  --hang         work that exceeds --timeout, which is 10 seconds if not given
  --crash        a crash, or an add-on that ends the process
Without such an option, the debugger stops at the first finding, failed command
or crash. Some rules are checked only after the command has returned; then the
debugger stops where the problem started.

With --batch, it prints the stack and the variables where it stops, and exits.
Arguments after -- go to the debugger, which runs your commands where it stops.

The debugger is gdb, or lldb where gdb is not installed. Build the add-on with -g,
or it shows no lines.

Examples:
  vexa-standin debug sweep.macro --addon ./libstats.so --rule unbalanced-lock
  vexa-standin debug sweep.macro --addon ./libstats.so --batch -- -ex 'print zones'

Exit status:
  0  with --batch: it stopped at the place; otherwise the debugger's own status
  1  the run did not reach the place
  2  wrong usage or input; no debugger is installed, or it cannot trace a program)";

constexpr std::chrono::seconds kHangLimit{10};

struct DebugRequest {
    RunOptions options;
    std::optional<std::string> rule;
    std::optional<std::uint64_t> call;
    std::optional<std::uint64_t> command;
    bool failure = false;
    bool hang = false;
    bool crash = false;
    bool batch = false;
    std::optional<std::string> debugger;
    std::vector<std::string> debuggerArguments;
};

std::string whyNoRule(const std::string& name) { return standin::findRule(name) != nullptr ? "" : noSuchRule(name); }

// Adds what `debug` and the run in the debugger have in common.
void addRunOptions(Command& command, RunOptions& options) {
    command.add(argument("MACROFILE", "The macro file", &options.macroFile).require().check(whyNoStream));
    command.add(addOnOption(options.addOns).require());
    command.add(styleOption(options.style).check(whyNoStream));
    addHostOption(command, options.contract);
    addStrictOptions(command, options.contract);
    addSuppressOptions(command, options.contract);
    addTimeoutOption(command, options.contract);
    command.add(flag({"--batch-mode"}, "Run the macro in batch mode, like --batch of 'run'", &options.batch));
    command.add(flag({"--keep-going"}, "Continue after a failed command", &options.keepGoing));
}

// The places that the user gave.
std::vector<StopPlace> placesOf(const DebugRequest& request) {
    std::vector<StopPlace> places;
    if (request.rule) places.push_back({StopEvent_e::Rule, *request.rule});
    if (request.call) places.push_back({StopEvent_e::Call, "", *request.call});
    if (request.command) places.push_back({StopEvent_e::Command, "", *request.command});
    if (request.failure) places.push_back({StopEvent_e::Failure});
    if (request.hang) places.push_back({StopEvent_e::Hang});
    if (request.crash) places.push_back({StopEvent_e::Crash});
    return places;
}

void checkPlaces(const DebugRequest& request) {
    const std::vector<StopPlace> places = placesOf(request);
    if (places.size() > 1) {
        throw UsageError(optionsOf(places[0]).front() + " and " + optionsOf(places[1]).front() +
                         ": give only one place");
    }
    for (const StopPlace& place : places) {
        const bool isCounted = place.event == StopEvent_e::Call || place.event == StopEvent_e::Command;
        if (isCounted && place.number == 0) throw UsageError(optionsOf(place).front() + ": the first one has number 1");
    }
}

ExitStatus_e debug(const DebugRequest& request) {
    const std::vector<StopPlace> places = placesOf(request);
    DebuggerCall call;
    call.words =
        debugWords(request.options.macroFile, debugOptionsOf(request.options, false, request.options.keepGoing));
    call.addOns = request.options.addOns;
    call.place = places.empty() ? StopPlace() : places.front();
    call.batch = request.batch;
    call.arguments = request.debuggerArguments;
    call.debugger = request.debugger;
    return enterDebugger(call);
}

// A rule that the user wants to see broken is not suppressed.
void prepare(RunOptions& options) {
    std::vector<std::string>& suppressed = options.contract.suppressed;
    suppressed.erase(std::remove(suppressed.begin(), suppressed.end(), options.stop->rule), suppressed.end());
    if (options.stop->event == StopEvent_e::Hang && !options.contract.timeout) options.contract.timeout = kHangLimit;
    options.inProcess = true;
}

ExitStatus_e runDebugged(RunOptions& options) {
    const char* const place = std::getenv(kStopVariable);
    options.stop = stopPlaceOf(place == nullptr ? "" : place);
    if (!options.stop) {
        tell(kDebuggedCommand, "this command is for the debugger that 'vexa-standin debug' starts");
        return ExitStatus_e::BadUsageOrInput;
    }
    if (!addProjectFile(options.contract) || !readHostFacts(options)) return ExitStatus_e::BadUsageOrInput;
    prepare(options);
    return runOneMacro(options);
}

}  // namespace

Command debugCommand() {
    const auto request = std::make_shared<DebugRequest>();
    Command command{"debug", "Run a macro file in a debugger, and stop where it goes wrong", kDebugFooter};
    addRunOptions(command, request->options);
    command.add(argument("ARGUMENT", "Arguments for the debugger, after --", &request->debuggerArguments));
    command.add(
        option({"--debugger"}, "PROGRAM", "The debugger: gdb, lldb, or the path of one of them", &request->debugger)
            .suggest({"gdb", "lldb"}));
    command.add(option({"--rule"}, "RULE", "Stop at the first finding about a rule", &request->rule)
                    .check(whyNoRule)
                    .suggest(ruleNames()));
    command.add(option({"--call"}, "N", "Stop at the N-th host call", &request->call));
    command.add(option({"--command"}, "N", "Stop at the start of the N-th command", &request->command));
    command.add(flag({"--failure"}, "Stop at the first command that fails", &request->failure));
    command.add(flag({"--hang"}, "Stop when a command takes too long", &request->hang));
    command.add(flag({"--crash"}, "Stop only at a crash", &request->crash));
    command.add(flag({"--batch"}, "Print the stack and the variables where it stops, and exit", &request->batch));
    command.check = [request] { checkPlaces(*request); };
    command.run = [request] { return debug(*request); };
    return command;
}

Command debuggedCommand() {
    const auto options = std::make_shared<RunOptions>();
    Command command{kDebuggedCommand, "Run a macro file in a debugger"};
    command.isHidden = true;
    addRunOptions(command, *options);
    command.run = [options] { return runDebugged(*options); };
    return command;
}

}  // namespace vexa::runner
