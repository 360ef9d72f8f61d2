#include "options/CommonOptions.h"

#include <algorithm>

#include "options/UsageError.h"
#include "system/files/StandardStreams.h"
#include "terminal/Terminal.h"

namespace vexa::runner {
namespace {

Option colourOption() {
    const auto choose = [](const std::string& when) {
        if (when != "auto") chooseColour(when == "always");
    };
    return option({"--color"}, "WHEN", "When to colour messages: auto, always or never", choose)
        .allow({"auto", "always", "never"});
}

}  // namespace

void addOptionsOfAll(Command& program) {
    program.options.insert(program.options.begin(),
                           flag({"-h", "--help"}, "Print this help message and exit", ShowHelp()));
    program.add(colourOption());
    for (Command& command : program.commands) addOptionsOfAll(command);
}

Option addOnOption(std::vector<std::string>& files) {
    return option({"--addon"}, "FILE.so", "An add-on to load; may be given more than once", &files).check(whyNoStream);
}

Option jobsOption(std::size_t& jobs, const std::string& what) {
    constexpr Range kJobs = {1, 1000};
    return option({"-j", "--jobs"}, "N", "How many " + what + " run at a time (default 1)", &jobs).check(kJobs);
}

Option styleOption(std::optional<std::string>& file) {
    return option(
        {"--style"}, "FILE.json",
        "The file of the host's style settings; - reads the standard input; 'style --help' describes the file", &file);
}

Option coverageOption(std::optional<std::string>& file) {
    return option({"--coverage"}, "FILE",
                  "Add what the add-ons used of the host's contract to this file; see 'coverage'", &file)
        .check(whyNoStream);
}

std::string whyNoStream(const std::string& path) {
    return path == "-" ? "a standard stream cannot be used here; for a file or folder called -, write ./-" : "";
}

void refuseSecondStandardInput(const std::vector<std::string>& inputs) {
    if (std::count_if(inputs.begin(), inputs.end(), isStandardInput) < 2) return;
    throw UsageError("-: the standard input can be read only once");
}

}  // namespace vexa::runner
