#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "options/ContractOptions.h"
#include "options/ExitStatus.h"

namespace vexa::runner {

/// What a test of macros is asked for.
struct MacroTestOptions {
    std::vector<std::string> paths;    ///< folders of macros, and macros
    std::vector<std::string> addOns;   ///< the files to load
    std::optional<std::string> style;  ///< the style file
    std::optional<std::string> junit;  ///< where the report in the form of JUnit goes
    ContractOptions contract;          ///< what of the host's contract is asked for
    std::size_t jobs = 1;              ///< how many macros run at a time
    bool batch = false;                ///< the host says that it is in batch mode
    bool inProcess = false;            ///< run in this process, for a debugger
    bool accepts = false;              ///< what the macros do is expected from now on
};

/// Runs macros, each in a process of its own, and compares what they do with what is expected of them: NAME.expected
/// beside NAME.macro. Tells how each came out.
ExitStatus_e testMacros(const MacroTestOptions& options);

}  // namespace vexa::runner
