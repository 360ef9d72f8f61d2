#pragma once

#include <string>

#include "options/ContractOptions.h"

namespace vexa::runner {

/// Finds `vexa-standin.toml` in the current folder or in the nearest folder above it that has one.
/// \return the path of the file; empty if there is none.
std::string findProjectFile();

/// Reads a project file, which is TOML.
///
///     strict = true                   breaches of rules make a run fail
///     warnings-as-errors = true       also breaches of rules of severity warning
///     suppress = ["missing-errmsg"]   rules whose breaches pass
///     timeout = 2.5                   seconds that a command may take
///     host = "facts.json"             the facts file of the host to answer like; relative to the project file
///
/// All keys are optional, and suppress may also be a single rule.
/// \throws UsageError if the file cannot be read, is no TOML, or has another key or a value of the wrong type. The
/// message names the file, and the line if the fault is on one.
ContractOptions readProjectFile(const std::string& path);

}  // namespace vexa::runner
