#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "options/Command.h"

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
void addSuppressOptions(Command& command, ContractOptions& options);

/// Adds `--strict`, `--warnings-as-errors`, and their opposites.
void addStrictOptions(Command& command, ContractOptions& options);

/// Adds `--timeout`.
void addTimeoutOption(Command& command, ContractOptions& options);

/// The names of all rules, for completion.
std::vector<std::string> ruleNames();

}  // namespace vexa::runner
