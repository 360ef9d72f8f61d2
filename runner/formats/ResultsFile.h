#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "formats/MacroFile.h"
#include "options/ExitStatus.h"
#include "stacks/StackReport.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

// The results of a run for other programs: one JSON object per line, for each command and then for the whole run.
// docs/many-files.md describes them.

/// Returns the line of a command.
/// \param findings the findings since the previous line
/// \param stacks   of a crash or a hang; empty if there was none
std::string resultLine(const MacroCommand& command, const standin::CommandResult& result,
                       std::chrono::duration<double> time, const std::vector<standin::Finding>& findings,
                       const StackReport& stacks = {});

/// Returns the last line.
/// \param findings the findings since the previous line
/// \param error    the reason why the run ended early; empty if it did not
/// \param stacks   of a crash or a hang; empty if there was none
std::string endLine(const std::string& macroFile, ExitStatus_e status, const std::vector<standin::Finding>& findings,
                    const std::string& error = {}, const StackReport& stacks = {});

}  // namespace vexa::runner
