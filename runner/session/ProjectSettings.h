#pragma once

#include "options/ContractOptions.h"

namespace vexa::runner {

/// Completes \p options by the project file: `vexa-standin.toml` in the current folder, or in the nearest one above it
/// that has one. What was given on the command line stays; of the rules to suppress those of both are.
/// \return whether the file could be read, if there is one; what is wrong with it was told.
bool addProjectFile(ContractOptions& options);

}  // namespace vexa::runner
