#pragma once

#include <chrono>
#include <functional>
#include <optional>

#include "commands/check/trial/BlackBox.h"
#include "commands/check/trial/CheckTest.h"
#include "coverage/Coverage.h"
#include "session/watch/Processes.h"

namespace vexa::runner {

/// How tests are run.
struct TestSetting {
    const AwaitedSignals& signals;        ///< the signals that end the whole check
    bool inProcess = false;               ///< true to run tests in this process, for a debugger
    std::chrono::milliseconds timeout{};  ///< the limit for each command; after it, the process of the test is killed
    Coverage* coverage = nullptr;         ///< what the tests add their coverage to; null for nothing
    bool readsStacks = true;              ///< whether the stacks of a crash or a hang are of interest
    bool showsWholeStacks = false;        ///< whether those stacks are shown whole
};

/// The end of a process that ran a test.
struct ProcessEnd : ProcessOutcome {
    std::optional<Verdict> verdict;  ///< nothing if the process ended first
    MacroCommand work;               ///< the current or last work of the add-ons

    bool hasLeft() const { return end == End_e::Left; }
    bool hasTimedOut() const { return end == End_e::TimedOut; }
};

/// Runs \p work in another process and watches it. The process is killed if code of an add-on runs and the black box
/// does not change for the time limit. The output of the process is captured, its input is empty, and its memory is
/// limited. \throws std::system_error if the process cannot be started. \throws EndedBySignal if a signal that ends the
/// program arrives.
ProcessEnd runWatched(const TestSetting& test, BlackBox& box, const std::function<Verdict()>& work);

}  // namespace vexa::runner
