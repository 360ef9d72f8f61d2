#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "ExitStatus.h"
#include "LiveFile.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

/// What came of a command of a macro.
struct CommandOutcome {
    std::string place;  ///< `FILE:LINE`
    std::string addOnId;
    std::string command;
    bool accepted = false;
    std::string error;  ///< empty when it was accepted
    double seconds = 0;
};

/// Opens a file for results. `-` is the standard output; what else is printed there goes to the standard error output
/// then.
/// \throws OutputError, also when \p path is one of the files \p taken.
std::unique_ptr<LiveFile> openResultsFile(const std::string& path, const std::vector<std::string>& taken);

/// The results of a run for other programs: a JSON object a line, one for each command, and a last one for the end.
/// Each is there as soon as it is known. docs/testing.md describes them.
class ResultsFile {
public:
    /// Writes to \p file from now on.
    void open(std::unique_ptr<LiveFile> file);

    /// Adds a command, and the findings of \p host since the last one.
    void add(const CommandOutcome& outcome, const standin::Host& host);
    /// Adds the end, and the findings of \p host since the last command.
    /// \return \p status, or that the results could not be written; this is told.
    ExitStatus_e finish(ExitStatus_e status, const std::string& macroFile, const standin::Host& host);

private:
    std::unique_ptr<LiveFile> m_file;
    std::size_t m_findings = 0;  // that were written
};

}  // namespace vexa::runner
