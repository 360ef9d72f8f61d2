#pragma once

#include <optional>
#include <string>
#include <vector>

#include "options/ContractOptions.h"
#include "options/ExitStatus.h"
#include "trace/TraceOutputs.h"

namespace vexa::runner {

/// The options of the command attach.
struct AttachOptions {
    ContractOptions contract;
    TraceOptions trace;
    std::optional<std::string> log;    ///< where messages go in the place of the standard error output
    std::string entry;                 ///< the function that makes a shared object an add-on
    std::vector<std::string> program;  ///< the program and its arguments
};

/// Runs a program with the layer in it.
/// \param file  the file of the program.
/// \param layer the file of the layer.
/// \return the status of the program, or why this program fails.
/// \throws std::system_error if the program cannot be started.
/// \throws OutputError
ExitStatus_e runAttached(const AttachOptions& options, const std::string& file, const std::string& layer);

}  // namespace vexa::runner
