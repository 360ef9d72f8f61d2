#pragma once

#include <optional>
#include <string>

#include "formats/Problem.h"
#include "options/Command.h"
#include "system/files/RunFiles.h"
#include "system/files/WholeOutput.h"

namespace vexa::runner {

inline constexpr char kProblemNote = 'f';  ///< a note of a process that runs add-ons: a packed() problem

/// Where a command reports its problems, apart from its messages.
struct ProblemOptions {
    std::optional<std::string> sarif;  ///< the file for the SARIF report
    std::string annotations;           ///< `github`, `gitlab`, or empty for none

    bool areWanted() const { return sarif.has_value() || !annotations.empty(); }
};

/// Adds `--sarif` and `--annotate`.
void addProblemOptions(Command& command, ProblemOptions& options);

/// Notes the files of \p options as outputs.
/// \throws OutputError as RunFiles::write().
void noteOutputs(const ProblemOptions& options, RunFiles& files);

/// Writes the problems of a command, when the command is over, for build servers.
class ProblemOutputs {
public:
    /// Checks that the files can be written.
    /// \throws OutputError
    explicit ProblemOutputs(const ProblemOptions& options);

    /// Writes the files, and prints the annotations of GitHub on the standard output. Call it once.
    /// \throws OutputError if a file cannot be written.
    void write(const ProblemReport& report);

private:
    bool m_printsForGithub;
    std::optional<WholeOutput> m_sarif;
    std::optional<WholeOutput> m_gitlab;
};

}  // namespace vexa::runner
