#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>

#include "session/watch/Notes.h"
#include "session/watch/ProcessBox.h"
#include "system/processes/SharedMemory.h"

namespace vexa::runner {

/// The notes of a test. They are in memory that the process of the test shares with the watching process, so they
/// outlive the process of the test.
struct BlackBox {
    using Clock = std::chrono::steady_clock;

    SharedText<4096> tried;              ///< what the test is trying
    SharedText<262144> macro;            ///< a macro that shows the error, if there is one
    SharedText<4096> entry;              ///< the current or last work of the add-on: `ID text`, `loading of FILE` …
    SharedText<1024> hostCall;           ///< its last host call: number, function, arguments
    SharedText<1024> addOnIds;           ///< the ids of the add-ons, a line each; the checked one comes first
    std::atomic<bool> isInAddOn{false};  ///< true while code of the add-on runs
    std::atomic<bool> isInHostCall{false};  ///< true until the call returns
    std::atomic<bool> wantedMemory{false};  ///< true if an allocation failed because memory ran out
    ProcessBox* process = nullptr;          ///< the box of the test's process
    NotesInterface* notes = nullptr;        ///< receives the coverage; of the test's process
    Clock::duration timeout{};              ///< the time limit for any work of the add-on

    /// Notes that the test makes progress. This restarts the time limit.
    void touch() const noexcept {
        constexpr Clock::duration kTimeWithoutAddOn = std::chrono::minutes(1);  // the limit for work of the test itself
        process->allow(isInAddOn ? timeout : std::max(timeout, kTimeWithoutAddOn));
    }
};

}  // namespace vexa::runner
