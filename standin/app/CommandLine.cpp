#include "CommandLine.h"

#include <CLI/CLI.hpp>

namespace vexa::runner {

void addAddOnOption(CLI::App& command, std::vector<std::string>& files) {
    // One file per --addon, so that a macro file behind it is not taken for a second add-on.
    command.add_option("--addon", files, "An add-on to load; may be given more than once")
        ->required()
        ->allow_extra_args(false)
        ->type_name("FILE.so");
}

void addJobsOption(CLI::App& command, std::size_t& jobs, const std::string& what) {
    constexpr std::size_t kMostJobs = 1000;
    command.add_option("-j,--jobs", jobs, "How many " + what + " run at a time; 1 unless given")
        ->check(CLI::Range(std::size_t{1}, kMostJobs).description(""))
        ->type_name("N");
}

CLI::Option& addStyleOption(CLI::App& command, std::optional<std::string>& file) {
    return *command.add_option("--style", file, "The file of the host's style settings; 'style --help' tells its form")
                ->type_name("FILE.json");
}

}  // namespace vexa::runner
