#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "options/CommandLine.h"

namespace vexa::runner {

/// What the user wants of the host's contract: by options, and by the project file. What nobody said is left empty.
struct ContractOptions {
    std::optional<bool> strict;                            ///< whether breaches count
    std::optional<bool> warningsAsErrors;                  ///< whether breaches of rules of severity warning do
    std::vector<std::string> suppressed;                   ///< rules whose breaches pass
    std::optional<std::chrono::duration<double>> timeout;  ///< how long a command may take
    bool ignoresProjectFile = false;                       ///< whether the project file is not looked for
    std::optional<std::string> projectFile;                ///< the project file that was read

    /// Whether breaches count. They do when warnings are to count as errors, unless somebody said otherwise.
    bool isStrict() const { return strict.value_or(warningsAsErrors.value_or(false)); }
};

/// Adds `--suppress` and `--no-project-file`. Rules there are none of are refused.
void addSuppressOptions(CLI::App& command, ContractOptions& options);

/// Adds `--strict`, `--warnings-as-errors`, and their opposites.
void addStrictOptions(CLI::App& command, ContractOptions& options);

/// Adds `--timeout`.
void addTimeoutOption(CLI::App& command, ContractOptions& options);

/// Completes \p options by the project file: `vexa-standin.toml` in the current folder, or in the nearest one above it
/// that has one. What was given on the command line stays; of the rules to suppress those of both are.
/// \return whether the file could be read, if there is one; what is wrong with it was told.
bool addProjectFile(ContractOptions& options);

}  // namespace vexa::runner
