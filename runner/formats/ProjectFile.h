#pragma once

#include <string>

#include "options/ContractOptions.h"

namespace vexa::runner {

inline constexpr const char* kProjectFile = "vexa-standin.toml";

/// Finds `vexa-standin.toml` in the current folder or in the nearest folder above it that has one.
/// \return the path of the file; empty if there is none.
std::string findProjectFile();

/// Reads a project file, which is TOML.
///
///     strict = true                   findings make a run fail
///     warnings-as-errors = true       findings of severity warning do, too
///     suppress = ["missing-errmsg"]   rules whose findings are ignored
///     timeout = 2.5                   seconds that a command may take
///     host = "facts.json"             the facts file of the host to answer like; relative to the project file
///
/// All keys are optional, and suppress may also be a single rule.
/// \throws UsageError if the file cannot be read, is not TOML, or has an unknown key or a value of the wrong type. The
/// message names the file, and the line if there is one.
ContractOptions readProjectFile(const std::string& path);

/// Reads the text of the project file \p path in the same way.
ContractOptions projectIn(const std::string& text, const std::string& path);

}  // namespace vexa::runner
