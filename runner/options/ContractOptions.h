#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "options/Command.h"

namespace vexa::runner {

/// The settings of the host and of its contract check, from options and from the project file. A setting that neither
/// gives is empty.
struct ContractOptions {
    std::optional<bool> strict;                            ///< true if findings make a run fail
    std::optional<bool> warningsAsErrors;                  ///< true if findings of severity warning do, too
    std::vector<std::string> suppressed;                   ///< rules whose findings are ignored
    std::optional<std::chrono::duration<double>> timeout;  ///< how long a command may take
    std::optional<std::string> host;                       ///< the facts file of the host to answer like
    bool showsStacks = false;                              ///< true if findings, crashes and hangs show whole stacks
    bool ignoresProjectFile = false;                       ///< true if no project file is read
    std::optional<std::string> projectFile;                ///< the project file that was read

    /// Returns true if findings make a run fail. Without a setting, they do if warnings count as errors.
    bool isStrict() const { return strict.value_or(warningsAsErrors.value_or(false)); }
};

/// Adds `--suppress` and `--no-project-file`. Unknown rules are refused.
void addSuppressOptions(Command& command, ContractOptions& options);

/// Adds `--strict`, `--warnings-as-errors`, and their opposites.
void addStrictOptions(Command& command, ContractOptions& options);

/// Adds `--stacks`.
void addStacksOption(Command& command, ContractOptions& options);

/// Adds `--timeout`.
void addTimeoutOption(Command& command, ContractOptions& options);

/// Adds `--host`.
void addHostOption(Command& command, ContractOptions& options);

/// Returns the names of all rules, for completion.
std::vector<std::string> ruleNames();

}  // namespace vexa::runner
