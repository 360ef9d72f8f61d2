#include "options/ContractOptions.h"

#include "options/CommonOptions.h"
#include "options/Refusals.h"
#include "text/Seconds.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

std::string whyNoRule(const std::string& name) { return standin::findRule(name) != nullptr ? "" : noSuchRule(name); }

std::string whyNoTimeout(const std::string& text) { return secondsOf(text) ? "" : kExpectedSeconds; }

// Adds the options --NAME and --no-NAME. `value` stays empty if the user gives neither.
void addSwitch(Command& command, std::optional<bool>& value, const std::string& name, const std::string& help) {
    command.add(flag({"--" + name}, help, switchTo(value, true)));
    command.add(flag({"--no-" + name}, "Turn --" + name + " off, even if the project file turns it on",
                     switchTo(value, false)));
}

}  // namespace

void addSuppressOptions(Command& command, ContractOptions& options) {
    command.add(
        option({"--suppress"}, "RULE", "Ignore findings of a rule; may be given more than once", &options.suppressed)
            .check(whyNoRule)
            .suggest(ruleNames()));
    command.add(
        flag({"--no-project-file"}, "Do not read the project file vexa-standin.toml", &options.ignoresProjectFile));
}

void addStrictOptions(Command& command, ContractOptions& options) {
    addSwitch(command, options.strict, "strict", "Fail if an add-on breaks the host's contract");
    addSwitch(command, options.warningsAsErrors, "warnings-as-errors", "Like --strict, but warnings fail the run, too");
}

void addStacksOption(Command& command, ContractOptions& options) {
    command.add(flag({"--stacks"},
                     "Show the whole stacks of findings, crashes and hangs, not only the add-on's own lines",
                     &options.showsStacks));
}

void addTimeoutOption(Command& command, ContractOptions& options) {
    const auto take = [&options](const std::string& text) { options.timeout = secondsOf(text); };
    command.add(option({"--timeout"}, "SECONDS", "End the run if a command takes longer", take).check(whyNoTimeout));
}

void addHostOption(Command& command, ContractOptions& options) {
    command.add(option({"--host"}, "FILE.json",
                       "Answer like the host of this facts file; 'probe --help' says how to get one", &options.host)
                    .check(whyNoStream));
}

std::vector<std::string> ruleNames() {
    std::vector<std::string> names;
    for (const standin::Rule& rule : standin::rules()) names.emplace_back(rule.name);
    return names;
}

}  // namespace vexa::runner
