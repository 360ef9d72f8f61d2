#pragma once

#include "options/ContractOptions.h"

namespace vexa::runner {

/// Completes \p options by the project file: `vexa-standin.toml` in the current folder, or in the nearest one above it
/// that has one. Options of the command line override the file; the rules to suppress are those of both.
/// \return false if there is a file that cannot be read. The function has then printed the error.
bool addProjectFile(ContractOptions& options);

}  // namespace vexa::runner
