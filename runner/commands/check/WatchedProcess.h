#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "commands/check/trial/BlackBox.h"
#include "commands/check/trial/CheckTest.h"
#include "system/processes/AwaitedSignals.h"

namespace vexa::runner {

/// How a process that worked for a verdict has ended.
struct ProcessEnd {
    std::optional<Verdict> verdict;  ///< what it came to; nothing when it ended before
    bool hasLeft = false;            ///< whether it ended by itself, after its verdict
    bool timedOut = false;           ///< whether it was killed because nothing went on
    int waitStatus = 0;              ///< as from waitpid()
    std::string output;              ///< the end of what it printed
};

/// Runs \p work in a process of its own and watches it: it is killed when the black box does not change for \p timeout
/// while an add-on is at work. What is printed there is caught, and there is nothing to read. It has a limit of memory,
/// lest it takes all there is.
/// \throws std::system_error when there cannot be another process.
/// \throws EndedBySignal when one of \p signals came that ends the program.
ProcessEnd runWatched(const AwaitedSignals& signals, BlackBox& box, std::chrono::milliseconds timeout,
                      const std::function<Verdict()>& work);

}  // namespace vexa::runner
