/// \file
/// Which hosts are being called, so that a host ends only after the calls that it answers.
///
/// Each thread announces the host that it calls in a slot of its own, so that threads do not contend. A host that ends
/// first stops being the process's host and then looks at all slots.
#pragma once

#include <atomic>

#include "HostState.h"

namespace vexa::standin {

/// Where a thread announces the host that it calls. A slot is never freed, for a host that ends looks at all of them.
struct CallSlot {
    std::atomic<const HostState*> host{nullptr};
    std::atomic<bool> isTaken{true};
    CallSlot* next = nullptr;
};

/// The slot that the calling thread keeps; null until its first call.
inline thread_local CallSlot* keptCallSlot __attribute__((tls_model("initial-exec"))) = nullptr;

/// Whether an announcement needs a fence of its own. If the system can fence all threads at once, a host that ends does
/// that instead: a fence in each call would cost more than the rest of the announcement.
inline std::atomic<bool> announcesWithFence{true};

/// Takes a slot for a call, and lets the thread keep it if it keeps none.
/// \return null when there is no memory for one.
CallSlot* takeCallSlot() noexcept;
void giveBack(CallSlot* slot) noexcept;

/// To be called when a host starts, before it becomes the process's host. The calling thread gets its slot, so that its
/// first call needs no memory.
void prepareForCalls();
/// Waits until no other thread is in a call of \p host, which has stopped being the process's host.
void waitForCallsOf(const HostState& host);

/// Whether a thread other than the calling one has called a host and still runs.
bool haveOtherThreadsCalled();

/// A call of the process's host, which does not end as long as this lives.
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

    /// The host that is called; null when there is none.
    HostState* host() const { return m_host; }

private:
    // A call within a call, for example from what shows a dialog, gets a slot of its own: it may call another host.
    static CallSlot* slot() noexcept {
        CallSlot* const kept = keptCallSlot;
        const bool isFree = kept != nullptr && kept->host.load(std::memory_order_relaxed) == nullptr;
        return isFree ? kept : takeCallSlot();
    }

    // A host that has stopped being the process's host meanwhile may not have seen the announcement.
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
            std::atomic_signal_fence(std::memory_order_seq_cst);  // the compiler must not exchange the two steps
        }
    }

    CallSlot* const m_slot;
    HostState* const m_host;
};

}  // namespace vexa::standin
