#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "options/Command.h"

namespace vexa::runner {

/// Adds `--help` and `--color` to \p program and to each of its commands. `--color` takes effect as soon as the parser
/// reads it.
void addOptionsOfAll(Command& program);

/// `--addon`: the add-ons to load.
Option addOnOption(std::vector<std::string>& files);

/// `--jobs`: how many of \p what run at a time.
Option jobsOption(std::size_t& jobs, const std::string& what);

/// `--style`: the style file.
Option styleOption(std::optional<std::string>& file);

/// `--coverage`: the coverage file to add to.
Option coverageOption(std::optional<std::string>& file);

/// The check of options that name an add-on or a folder: refuses `-`, which names a standard stream.
std::string whyNoStream(const std::string& path);

/// \throws UsageError if more than one of \p inputs is the standard input.
void refuseSecondStandardInput(const std::vector<std::string>& inputs);

}  // namespace vexa::runner
