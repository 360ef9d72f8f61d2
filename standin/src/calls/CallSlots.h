/// \file
/// Tracks which hosts are being called, so that a host can wait for its calls before it is destroyed.
///
/// Each thread announces the host that it calls in its own slot, so that threads do not compete for one place. The
/// destructor of a host makes another host the process's host, and then checks all slots.
#pragma once

#include <atomic>

namespace vexa::standin {

struct HostState;

/// A thread announces the host that it calls here. Slots are never freed, because the destructor of a host checks all
/// of them.
struct CallSlot {
    std::atomic<const HostState*> host{nullptr};
    std::atomic<bool> isTaken{true};
    CallSlot* next = nullptr;
};

/// The slot that the calling thread keeps; null until its first call.
inline thread_local CallSlot* keptCallSlot __attribute__((tls_model("initial-exec"))) = nullptr;

/// True if each announcement needs a memory fence. If the system can fence all threads at once, the destructor of a
/// host does that instead, because a fence in each call would be expensive.
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

/// Returns true if another thread has called a host and still runs.
bool haveOtherThreadsCalled();

}  // namespace vexa::standin
