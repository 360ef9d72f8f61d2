/// \file
/// Which hosts are being called. A host waits for its calls before it ends.
///
/// Each thread announces the host that it calls in a slot of its own, so that threads do not compete for one place. A
/// host that ends first stops being the process's host, and then looks at all slots.
#pragma once

#include <atomic>

namespace vexa::standin {

struct HostState;

/// Where a thread announces the host that it calls. Slots are never freed, because a host that ends looks at all of
/// them.
struct CallSlot {
    std::atomic<const HostState*> host{nullptr};
    std::atomic<bool> isTaken{true};
    CallSlot* next = nullptr;
};

/// The slot that the calling thread keeps; null until its first call.
inline thread_local CallSlot* keptCallSlot __attribute__((tls_model("initial-exec"))) = nullptr;

/// Whether an announcement needs a fence of its own. If the system can fence all threads at once, a host that ends does
/// that instead, because a fence in each call would be expensive.
inline std::atomic<bool> announcesWithFence{true};

/// Takes a slot for a call. The thread keeps the slot if it has none.
/// \return null if there is no memory for a slot.
CallSlot* takeCallSlot() noexcept;
void giveBack(CallSlot* slot) noexcept;

/// Call this when a host starts, before it becomes the process's host. The calling thread gets its slot, so that its
/// first call needs no memory.
void prepareForCalls();
/// Waits until no other thread is in a call of \p host, which has stopped being the process's host.
void waitForCallsOf(const HostState& host);

/// Whether a thread other than the calling one has called a host and still runs.
bool haveOtherThreadsCalled();

}  // namespace vexa::standin
