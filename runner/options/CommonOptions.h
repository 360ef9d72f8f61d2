#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "options/Command.h"

namespace vexa::runner {

/// Gives \p program and all its commands the options that each of them has: the help, and when messages are in colour,
/// which takes effect when the option is found.
void addOptionsOfAll(Command& program);

/// Add-ons to load.
Option addOnOption(std::vector<std::string>& files);

/// How many of \p what run at a time: one, unless it is given.
Option jobsOption(std::size_t& jobs, const std::string& what);

/// A style file.
Option styleOption(std::optional<std::string>& file);

/// A check for options that name an add-on or a folder: refuses `-`, which names a standard stream.
std::string whyNoStream(const std::string& path);

/// \throws UsageError when more than one of \p inputs is the standard input.
void refuseSecondStandardInput(const std::vector<std::string>& inputs);

}  // namespace vexa::runner
