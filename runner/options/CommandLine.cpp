#include "options/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "system/files/StandardStreams.h"

namespace vexa::runner {

CLI::Option& addAddOnOption(CLI::App& command, std::vector<std::string>& files) {
    // One file per --addon, so that a macro file behind it is not taken for a second add-on.
    return *command.add_option("--addon", files, "An add-on to load; may be given more than once")
                ->required()
                ->allow_extra_args(false)
                ->check(CLI::Validator(whyNoStream, ""))
                ->type_name("FILE.so");
}

std::string whyNoStream(const std::string& path) {
    return path == "-" ? "a standard stream cannot be used here; ./- is a file or folder of that name" : "";
}

void refuseSecondStandardInput(const std::vector<std::string>& inputs) {
    if (std::count_if(inputs.begin(), inputs.end(), isStandardInput) < 2) return;
    throw CLI::ValidationError("-", "the standard input can be read only once");
}

void addJobsOption(CLI::App& command, std::size_t& jobs, const std::string& what) {
    constexpr std::size_t kMostJobs = 1000;
    command.add_option("-j,--jobs", jobs, "How many " + what + " run at a time; 1 unless given")
        ->check(CLI::Range(std::size_t{1}, kMostJobs).description(""))
        ->type_name("N");
}

CLI::Option& addStyleOption(CLI::App& command, std::optional<std::string>& file) {
    return *command
                .add_option(
                    "--style", file,
                    "The file of the host's style settings, - for the standard input; 'style --help' tells its form")
                ->type_name("FILE.json");
}

}  // namespace vexa::runner
