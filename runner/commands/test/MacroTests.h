#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "options/ExitStatus.h"
#include "session/Session.h"

namespace vexa::runner {

/// The options of a test of macros.
struct MacroTestOptions : SessionOptions {
    std::vector<std::string> paths;    ///< folders of macros, and macros
    std::optional<std::string> junit;  ///< where the JUnit report goes
    std::size_t jobs = 1;              ///< how many macros run at a time
    bool accepts = false;              ///< what the macros do is expected from now on
};

/// Runs each macro in a process of its own, compares what NAME.macro does with NAME.expected beside it, and prints the
/// result of each.
/// \throws OutputError if a file cannot be written.
ExitStatus_e testMacros(const MacroTestOptions& options);

}  // namespace vexa::runner
