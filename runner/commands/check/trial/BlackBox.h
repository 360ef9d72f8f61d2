#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>

#include "session/watch/ProcessBox.h"
#include "system/processes/SharedMemory.h"

namespace vexa::runner {

/// The notes of a test. They lie in memory that the process of the test shares with the one that watches it, so they
/// outlive the test.
struct BlackBox {
    using Clock = std::chrono::steady_clock;

    SharedText<4096> tried;                 ///< what the test tries
    SharedText<262144> macro;               ///< a macro that shows it, if there is one
    SharedText<4096> entry;                 ///< what the add-on does, or did last: `ID text`, `loading of FILE` …
    SharedText<1024> hostCall;              ///< its last host call: number, function, arguments
    SharedText<1024> addOnIds;              ///< the ids of the add-ons, a line each; the checked one comes first
    std::atomic<bool> isInAddOn{false};     ///< whether code of the add-on runs now
    std::atomic<bool> isInHostCall{false};  ///< whether the call has not returned
    std::atomic<bool> wantedMemory{false};  ///< whether an allocation failed because memory ran out
    ProcessBox* process = nullptr;          ///< of the test's process
    Clock::duration timeout{};              ///< how long the add-on may take for anything

    /// Notes that the test goes on, which starts the time limit anew.
    void touch() const noexcept {
        constexpr Clock::duration kTimeWithoutAddOn = std::chrono::minutes(1);  // for what a test does itself
        process->allow(isInAddOn ? timeout : std::max(timeout, kTimeWithoutAddOn));
    }
};

}  // namespace vexa::runner
