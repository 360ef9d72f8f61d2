#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "commands/check/trial/BlackBox.h"
#include "commands/check/trial/CheckTest.h"
#include "session/watch/Processes.h"

namespace vexa::runner {

/// The end of a process that worked for a verdict.
struct ProcessEnd : ProcessOutcome {
    std::optional<Verdict> verdict;  ///< nothing if the process ended before it had one

    bool hasLeft() const { return end == End_e::Left; }
    bool hasTimedOut() const { return end == End_e::TimedOut; }
};

/// Runs \p work in a process of its own and watches it: it is killed when the black box does not change for \p timeout
/// while an add-on is at work. What is printed there is caught, and there is nothing to read. It has a limit of memory,
/// lest it takes all there is.
/// \throws std::system_error when there cannot be another process.
/// \throws EndedBySignal when one of \p signals came that ends the program.
ProcessEnd runWatched(const AwaitedSignals& signals, BlackBox& box, std::chrono::milliseconds timeout,
                      const std::function<Verdict()>& work);

}  // namespace vexa::runner
