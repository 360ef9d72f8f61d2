#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace vexa::runner {

/// The commands of \p app that its help shows, in its order.
std::vector<const CLI::App*> shownCommands(const CLI::App& app);

/// The options of \p command, and what it takes by place.
std::vector<const CLI::Option*> namedOptions(const CLI::App& command);
std::vector<const CLI::Option*> positionals(const CLI::App& command);

/// What \p option is given by: "-j", "--jobs".
std::vector<std::string> namesOf(const CLI::Option& option);

/// What the help calls the value of \p option: "FILE"; empty for a switch.
std::string valueNameOf(const CLI::Option& option);

}  // namespace vexa::runner
