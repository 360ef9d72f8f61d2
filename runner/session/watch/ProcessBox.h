#pragma once

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "system/processes/SharedMemory.h"
#include "vexastandin/CallProgress.h"

namespace vexa::runner {

/// Says what a process that runs add-ons is doing. It is in memory that the process shares with the watching process.
struct ProcessBox {
    using Clock = std::chrono::steady_clock;

    /// \name The current or last work of the add-ons
    /// @{
    SharedText<4096> place;                   ///< `FILE:LINE` of a command; empty for other work
    SharedText<1024> addOnId;                 ///< the add-on of a command; empty for other work
    SharedText<65536> work;                   ///< the command's text, or `loading of FILE` and the like
    std::atomic<bool> isInAddOn{false};       ///< whether code of an add-on runs now
    standin::CallProgress calls;              ///< the host calls
    std::atomic<std::size_t> callsBefore{0};  ///< how many calls were made before
    /// @}

    std::atomic<std::uint64_t> sent{0};      ///< how many messages the process has sent
    std::atomic<bool> isStatusDrawn{false};  ///< whether the status line is drawn on the terminal
    std::atomic<bool> areTracesOpen{false};  ///< whether the process has opened its traces

    /// Notes that the host calls an add-on.
    void enter(std::string_view itsPlace, std::string_view id, std::string_view itsWork) noexcept {
        place.set(itsPlace);
        addOnId.set(id);
        work.set(itsWork);
        callsBefore = calls.calls.load();
        m_entered = Clock::now().time_since_epoch().count();
        isInAddOn = true;
    }
    void leaveAddOn() noexcept { isInAddOn = false; }
    /// Returns the time since enter() was called.
    Clock::duration sinceEntered() const noexcept {
        return Clock::now().time_since_epoch() - Clock::duration(m_entered);
    }

    /// The process that this box belongs to; 0 if nobody watches it.
    std::atomic<pid_t> owner{0};
    bool isWatched() const noexcept { return owner != 0; }
    /// Returns true if this process is not the owner, but a copy that an add-on forked.
    bool isOfOther() const noexcept { return owner != 0 && owner != getpid(); }

    /// \name The time limit
    /// @{

    /// Starts a time limit for the process; 0 for none.
    void allow(Clock::duration limit) noexcept {
        m_start = Clock::now().time_since_epoch().count();
        m_limit = limit.count();
    }
    /// Does not count \p time, in which the process was suspended.
    void forgive(Clock::duration time) noexcept { m_start += time.count(); }
    /// Returns true if the process has exceeded its limit by more than \p grace.
    bool isLate(Clock::duration grace) const noexcept {
        // First, so that a limit that starts meanwhile has not passed.
        const std::int64_t now = Clock::now().time_since_epoch().count();
        const std::int64_t limit = m_limit;
        return limit != 0 && now - m_start > limit + grace.count();
    }
    Clock::duration limit() const noexcept { return Clock::duration(m_limit); }
    /// @}

    /// \name The end
    /// @{

    /// Reports that all work is done, with \p status. The report of a copy that an add-on forked does not count.
    void report(int status) noexcept {
        m_status = status;
        m_reporter = getpid();
    }
    /// Notes that the exit handlers of the process have run.
    void markLeft() noexcept { m_leaver = getpid(); }

    bool hasLeft(pid_t process) const noexcept { return m_reporter == process && m_leaver == process; }
    int status() const noexcept { return m_status; }
    /// @}

private:
    std::atomic<std::int64_t> m_entered{0};
    std::atomic<std::int64_t> m_start{0};
    std::atomic<std::int64_t> m_limit{0};
    std::atomic<pid_t> m_reporter{0};
    std::atomic<pid_t> m_leaver{0};
    std::atomic<int> m_status{0};
    static_assert(std::atomic<std::int64_t>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
                  "Processes share no lock");
};

}  // namespace vexa::runner
