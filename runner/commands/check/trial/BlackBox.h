#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>

#include "session/watch/ProcessBox.h"
#include "system/processes/SharedMemory.h"

namespace vexa::runner {

/// What a test notes for the process that watches it. It lies in memory of both, so it outlives the test's process.
struct BlackBox {
    using Clock = std::chrono::steady_clock;

    SharedText<4096> tried;                 ///< what the test tries
    SharedText<262144> macro;               ///< a macro that shows it, if there is one
    SharedText<4096> entry;                 ///< what the add-on does, or did last: `ID text`, `loading of FILE` …
    SharedText<1024> hostCall;              ///< the call of the host made last by that: number, function, arguments
    SharedText<1024> addOnIds;              ///< the ids of the add-ons, a line each, the one that is checked first
    std::atomic<bool> isInAddOn{false};     ///< whether the add-on is at work now
    std::atomic<bool> isInHostCall{false};  ///< whether the call has not returned
    std::atomic<bool> wantedMemory{false};  ///< whether an allocation failed for want of memory
    ProcessBox* process = nullptr;          ///< of the test's process
    Clock::duration timeout{};              ///< how long the add-on may take for anything

    /// Notes that the test starts or ends something now.
    void touch() const noexcept {
        constexpr Clock::duration kTimeWithoutAddOn = std::chrono::minutes(1);  // for what a test does itself
        process->allow(isInAddOn ? timeout : std::max(timeout, kTimeWithoutAddOn));
    }
};

}  // namespace vexa::runner
