#pragma once

#include <atomic>

#include "HostState.h"
#include "calls/CallSlots.h"

namespace vexa::standin {

/// A call of the process's host. The host is not destroyed as long as this object lives.
class CallInProgress {
public:
    CallInProgress() noexcept : m_slot(HostState::current() == nullptr ? nullptr : slot()), m_host(announced(m_slot)) {}
    CallInProgress(const CallInProgress&) = delete;
    CallInProgress& operator=(const CallInProgress&) = delete;
    ~CallInProgress() {
        if (m_slot == nullptr) return;
        m_slot->host.store(nullptr, std::memory_order_release);
        if (m_slot != keptCallSlot) giveBack(m_slot);
    }

    /// Returns the called host; null if there is none.
    HostState* host() const { return m_host; }

private:
    // A call inside a call, for example from a function that shows a dialog, gets another slot, because it may call
    // another host.
    static CallSlot* slot() noexcept {
        CallSlot* const kept = keptCallSlot;
        const bool isFree = kept != nullptr && kept->host.load(std::memory_order_relaxed) == nullptr;
        return isFree ? kept : takeCallSlot();
    }

    // Checks the host again after the announcement: if it has stopped being the process's host, it may have missed it.
    static HostState* announced(CallSlot* slot) noexcept {
        if (slot == nullptr) return nullptr;
        HostState* host = HostState::current();
        for (;;) {
            announce(*slot, host);
            HostState* const current = HostState::innermost.load(std::memory_order_seq_cst);
            if (current == host) return host;
            host = current;
        }
    }

    static void announce(CallSlot& slot, const HostState* host) noexcept {
        if (announcesWithFence.load(std::memory_order_relaxed)) {
            slot.host.store(host, std::memory_order_seq_cst);
        } else {
            slot.host.store(host, std::memory_order_relaxed);
            std::atomic_signal_fence(std::memory_order_seq_cst);  // the compiler must not swap the two steps
        }
    }

    CallSlot* const m_slot;
    HostState* const m_host;
};

}  // namespace vexa::standin
