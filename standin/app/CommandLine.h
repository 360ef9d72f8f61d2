#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "ExitStatus.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace vexa::runner {

/// What the command line asks for. Each command, when it is found there, puts itself here; it runs afterwards.
using Action = std::function<ExitStatus_e()>;

/// Adds the option for add-ons to load, at least one.
void addAddOnOption(CLI::App& command, std::vector<std::string>& files);

/// Adds the option for how many of \p what run at a time: one, unless it is given.
void addJobsOption(CLI::App& command, std::size_t& jobs, const std::string& what);

/// Adds the option for a style file. It may be left out, unless made required.
CLI::Option& addStyleOption(CLI::App& command, std::optional<std::string>& file);

}  // namespace vexa::runner
