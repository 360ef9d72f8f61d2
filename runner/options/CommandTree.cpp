#include "options/CommandTree.h"

#include <CLI/CLI.hpp>

namespace vexa::runner {

std::vector<const CLI::App*> shownCommands(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<const CLI::Option*> namedOptions(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return !option->get_positional(); });
}

std::vector<const CLI::Option*> positionals(const CLI::App& command) {
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<std::string> namesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& name : option.get_snames()) names.push_back('-' + name);
    for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
    return names;
}

std::string valueNameOf(const CLI::Option& option) {
    if (option.get_positional()) return option.get_name(true);
    if (option.get_expected_max() == 0) return "";
    const std::string name = option.get_type_name();  // what is behind a colon tells which values are taken
    return name.substr(0, name.find(':'));
}

}  // namespace vexa::runner
