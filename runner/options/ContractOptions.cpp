#include "options/ContractOptions.h"

#include <CLI/CLI.hpp>
#include <cstddef>

#include "formats/ProjectFile.h"
#include "options/Refusals.h"
#include "options/UsageError.h"
#include "terminal/Console.h"
#include "text/Seconds.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {
namespace {

// CLI11's form of a check: what is wrong, or nothing.
std::string whyNoRule(const std::string& name) { return standin::findRule(name) != nullptr ? "" : noSuchRule(name); }

std::string whyNoTimeout(const std::string& text) { return secondsOf(text) ? "" : kExpectedSeconds; }

// A switch that is neither on nor off until it is given.
void addSwitch(CLI::App& command, std::optional<bool>& value, const std::string& name, const std::string& help) {
    const auto set = [&value](bool isOn) { return [&value, isOn] { value = isOn; }; };
    command.add_flag_callback("--" + name, set(true), help);
    command.add_flag_callback("--no-" + name, set(false), "Not so, whatever the project file says");
}

}  // namespace

void addSuppressOptions(CLI::App& command, ContractOptions& options) {
    command.add_option("--suppress", options.suppressed, "Let breaches of a rule pass; may be given more than once")
        ->allow_extra_args(false)
        ->check(CLI::Validator(whyNoRule, ""))
        ->type_name("RULE");
    command.add_flag("--no-project-file", options.ignoresProjectFile, "Do not look for a vexa-standin.toml");
}

void addStrictOptions(CLI::App& command, ContractOptions& options) {
    addSwitch(command, options.strict, "strict", "Fail when an add-on breaks the host's contract");
    addSwitch(command, options.warningsAsErrors, "warnings-as-errors", "As --strict, and warnings count as errors");
}

void addTimeoutOption(CLI::App& command, ContractOptions& options) {
    command
        .add_option_function<std::string>(
            "--timeout", [&options](const std::string& text) { options.timeout = secondsOf(text); },
            "End the program when a command takes longer")
        ->check(CLI::Validator(whyNoTimeout, ""))
        ->type_name("SECONDS");
}

bool addProjectFile(ContractOptions& options) {
    const std::string path = options.ignoresProjectFile ? "" : findProjectFile();
    if (path.empty()) return true;
    try {
        const ContractOptions project = readProjectFile(path);
        options.projectFile = path;
        if (!options.strict) options.strict = project.strict;
        if (!options.warningsAsErrors) options.warningsAsErrors = project.warningsAsErrors;
        if (!options.timeout) options.timeout = project.timeout;
        options.suppressed.insert(options.suppressed.end(), project.suppressed.begin(), project.suppressed.end());
    } catch (const UsageError& error) {
        tell(error.what());
        return false;
    }
    return true;
}

}  // namespace vexa::runner
