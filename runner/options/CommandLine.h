#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "options/ExitStatus.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace vexa::runner {

/// What the command line asks for. Each command, when it is found there, puts itself here; it runs afterwards.
using Action = std::function<ExitStatus_e()>;

/// Adds the option for add-ons to load, at least one unless made optional.
CLI::Option& addAddOnOption(CLI::App& command, std::vector<std::string>& files);

/// For options that name an add-on or a folder: what is wrong with `-`, which names a standard stream. CLI11's form of
/// a check.
std::string whyNoStream(const std::string& path);

/// \throws CLI::ValidationError when more than one of \p inputs is the standard input.
void refuseSecondStandardInput(const std::vector<std::string>& inputs);

/// Adds the option for how many of \p what run at a time: one, unless it is given.
void addJobsOption(CLI::App& command, std::size_t& jobs, const std::string& what);

/// Adds the option for a style file. It may be left out, unless made required.
CLI::Option& addStyleOption(CLI::App& command, std::optional<std::string>& file);

}  // namespace vexa::runner
