#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "commands/check/trial/BlackBox.h"
#include "commands/check/trial/CheckTest.h"
#include "session/watch/Processes.h"

namespace vexa::runner {

/// The end of a process that ran a test.
struct ProcessEnd : ProcessOutcome {
    std::optional<Verdict> verdict;  ///< nothing if the process ended before it had one

    bool hasLeft() const { return end == End_e::Left; }
    bool hasTimedOut() const { return end == End_e::TimedOut; }
};

/// Runs \p work in a process of its own and watches it. The process is killed if the black box does not change for
/// \p timeout while an add-on works. Its output is caught, its input is empty, and its memory is limited.
/// \throws std::system_error if the process cannot be started.
/// \throws EndedBySignal if one of \p signals came that ends the program.
ProcessEnd runWatched(const AwaitedSignals& signals, BlackBox& box, std::chrono::milliseconds timeout,
                      const std::function<Verdict()>& work);

}  // namespace vexa::runner
