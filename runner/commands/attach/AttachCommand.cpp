#include <memory>
#include <string>
#include <system_error>
#include <utility>

#include "commands/Commands.h"
#include "commands/attach/AttachedRun.h"
#include "commands/attach/ProgramFile.h"
#include "contract/messages/LayerVariables.h"
#include "options/CommonOptions.h"
#include "options/UsageError.h"
#include "session/ProjectSettings.h"
#include "system/files/OutputTarget.h"
#include "system/files/ProgramFiles.h"
#include "system/files/RunFiles.h"
#include "system/files/StandardStreams.h"
#include "terminal/Console.h"

namespace vexa::runner {
namespace {

constexpr const char* kAttachFooter = R"(The program may be the host itself, or a script that starts it. It is a program
for x86-64 Linux that uses glibc 2.35 or later. It keeps its standard input and
output. Findings go to the standard error output, or with --log to a file.

'vexa-standin explain --attach' lists what cannot be seen in such a host.

Example:
  vexa-standin attach --strict --log findings.txt -- ./host --batch sweep.macro

Exit status:
  that of the program, or 128 and the number of the signal that ended it, but
  2    wrong usage; the program cannot be started, or the layer cannot be loaded
       into it; a file could not be read or written
  3    with --strict: an add-on broke the host's contract
  4    with --timeout: a command did not return)";

// Throws UsageError if an output is the program's own.
void refuseStandardOutput(const AttachOptions& options) {
    const std::pair<const char*, const std::optional<std::string>&> outputs[] = {
        {"--log", options.log}, {"--trace", options.trace.events}, {"--trace-text", options.trace.text}};
    for (const auto& [name, file] : outputs) {
        if (file && isStandardOutput(*file)) {
            throw UsageError(std::string(name) + ": the standard output belongs to the program");
        }
    }
}

// Throws OutputError if an output would replace an input or another output.
void checkFiles(const AttachOptions& options, const std::string& program) {
    RunFiles files;
    files.read(program);
    files.read(options.contract.projectFile);
    for (const auto& output : {options.log, options.trace.events, options.trace.text}) files.write(output);
}

void completeFacts(AttachOptions& options) {
    RunFacts& facts = options.trace.facts;
    facts.isStrict = options.contract.isStrict();
    facts.hasTimeLimit = options.contract.timeout.has_value();
    facts.suppressed = options.contract.suppressed;
}

ExitStatus_e refuse(const std::string& name, const std::string& why) {
    tell(name, why);
    return ExitStatus_e::BadUsageOrInput;
}

ExitStatus_e attach(AttachOptions& options) {
    const auto timeout = options.contract.timeout;
    if (!addProjectFile(options.contract)) return ExitStatus_e::BadUsageOrInput;
    options.contract.timeout = timeout;  // the limit of the project file is not meant for a whole program
    const std::string& name = options.program.front();
    const std::string file = findProgram(name);
    if (file.empty()) return refuse(name, "no such program in the folders of PATH");
    const std::string reason = whyNotAttachable(file);
    if (!reason.empty()) return refuse(file, reason);
    const std::string layer = fileBesideProgram({"../layer/libvexalayer.so", VEXA_INSTALLED_LAYER});
    if (layer.empty()) return refuse(kProgramName, "libvexalayer.so is not installed with this program");
    if (layer.find(':') != std::string::npos) return refuse(layer, "LD_AUDIT takes no path with a colon");
    checkFiles(options, file);
    completeFacts(options);
    try {
        return runAttached(options, file, layer);
    } catch (const std::system_error& error) {
        return refuse(file, std::string("it cannot be started: ") + error.what());
    }
}

}  // namespace

Command attachCommand() {
    const auto options = std::make_shared<AttachOptions>();
    options->entry = standin::kUsualEntry;
    Command command{"attach", "Check add-ons in another host", kAttachFooter};
    command.add(argument("PROGRAM", "The program, after --, and its arguments", &options->program).require());
    addStrictOptions(command, options->contract);
    addSuppressOptions(command, options->contract);
    addStacksOption(command, options->contract);
    addTimeoutOption(command, options->contract);
    addTraceOptions(command, options->trace);
    command.add(option({"--log"}, "FILE", "Write findings and notes to a file", &options->log));
    command.add(option({"--entry"}, "NAME", "The function of an add-on that the host calls first, if not vexaAddOn",
                       &options->entry));
    command.check = [options] { refuseStandardOutput(*options); };
    command.run = [options] { return attach(*options); };
    return command;
}

}  // namespace vexa::runner
