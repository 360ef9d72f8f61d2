/// \file
/// Which hosts are being called, so that a host ends only after the calls that it answers.
///
/// Each thread announces the host that it calls in a slot of its own, so that threads do not contend. A host that ends
/// first stops being the process's host and then looks at all slots.
#pragma once

#include <atomic>

namespace vexa::standin {

struct HostState;

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

}  // namespace vexa::standin
