#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "commands/test/Transcript.h"
#include "options/ExitStatus.h"
#include "session/ProblemOutputs.h"
#include "system/processes/AwaitedSignals.h"

namespace vexa::runner {

/// The options of the command `test`.
struct TestOptions : TranscriptOptions {
    std::vector<std::string> paths;    ///< macros, and folders of macros
    std::optional<std::string> junit;  ///< the file for the JUnit report
    ProblemOptions problems;           ///< where the problems for build servers go
    std::size_t jobs = 1;              ///< how many macros run at a time
    bool accepts = false;              ///< save the current results as the expected results
    bool watches = false;              ///< test again when files change
};

/// One of many rounds of tests. A round prints failures, but neither the macros that passed nor a count.
struct TestRound {
    const AwaitedSignals& signals;
    /// Returns true if a file on which a macro depends has changed since the round started. The failure of such a macro
    /// is not printed.
    std::function<bool(const std::string& macro)> isOutdated;
    /// Receives each verdict that counts.
    std::function<void(const std::string& macro, bool hasPassed)> tell;
};

/// Runs each macro in its own process, compares the results of NAME.macro with NAME.expected in the same folder, and
/// prints the outcome.
/// \param round null if the tests run only once.
ExitStatus_e testMacros(const TestOptions& options, const TestRound* round = nullptr);

}  // namespace vexa::runner
