#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "formats/MacroFile.h"
#include "options/ExitStatus.h"
#include "stacks/StackReport.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

// The results of a run for other programs: one JSON object per line, for each command and then for the whole run.
// docs/many-files.md describes them.

/// A finding in the results.
struct ResultFinding {
    standin::Finding finding;
    std::string debug;  ///< the command that shows it in a debugger; may be empty
};

/// What both kinds of lines say.
struct ResultDetails {
    std::vector<ResultFinding> findings = {};  ///< since the previous line
    StackReport stacks = {};                   ///< of a crash or a hang; empty if there was none
    std::string debug = {};                    ///< the command that shows the failure in a debugger; may be empty
    std::string suggestion = {};               ///< what the user may have meant by a refused command; may be empty
};

/// Returns the line of a command.
std::string resultLine(const MacroCommand& command, const standin::CommandResult& result,
                       std::chrono::duration<double> time, const ResultDetails& details = {});

/// Returns the last line.
/// \param error the reason why the run ended early; empty if it did not
std::string endLine(const std::string& macroFile, ExitStatus_e status, const ResultDetails& details = {},
                    const std::string& error = {});

/// Returns the name of a macro file as a results file has it: bytes that are not UTF-8 are replaced.
std::string nameInResults(const std::string& macroFile);

/// A line that was read.
struct ResultLine {
    std::string name;               ///< the place of a command, or the macro file of an end line
    std::optional<int> exitStatus;  ///< of an end line; a command has none
    bool isAccepted = true;
    std::string error;
    double seconds = 0;
};

/// Reads a line without its line feed. Ignores members that it does not know.
/// \return nothing if it is not a line of results.
std::optional<ResultLine> parseResultLine(const std::string& line);

/// Returns true if resultLine() or endLine() may have written \p text as the start of a line.
bool isStartOfResultLine(std::string_view text);

}  // namespace vexa::runner
