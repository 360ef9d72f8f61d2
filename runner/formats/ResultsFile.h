#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "formats/MacroFile.h"
#include "options/ExitStatus.h"
#include "vexastandin/Host.h"

namespace vexa::runner {

// The results of a run for other programs: a JSON object a line, one for each command, and a last one for the whole
// run. docs/testing.md describes them.

/// The line of a command.
/// \param findings those since the line before
std::string resultLine(const MacroCommand& command, const standin::CommandResult& result,
                       std::chrono::duration<double> time, const std::vector<standin::Finding>& findings);

/// The last line.
/// \param findings those since the line before
/// \param error    why the run ended early; empty if it did not
std::string endLine(const std::string& macroFile, ExitStatus_e status, const std::vector<standin::Finding>& findings,
                    const std::string& error = {});

}  // namespace vexa::runner
