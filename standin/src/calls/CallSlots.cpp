#include "calls/CallSlots.h"

#include <linux/membarrier.h>
#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <chrono>
#include <new>
#include <thread>

namespace vexa::standin {
namespace {

// All slots, linked from the newest one.
std::atomic<CallSlot*> slots{nullptr};

bool fenceThreads(int command) { return syscall(SYS_membarrier, command, 0, 0) == 0; }

// Called in a child process, which has only the thread that forked: the calls of other threads never end there. A slot
// in use may belong to the call in which the thread forked, so it stays in use.
void forgetOtherThreads() {
    for (CallSlot* slot = slots; slot != nullptr; slot = slot->next) {
        if (slot != keptCallSlot && slot->host.exchange(nullptr) == nullptr) slot->isTaken = false;
    }
}

// A thread that ends may call the host after this function gave its slot back. It then takes a slot again, and the
// system calls this function again.
void giveBackKept(void* slot) {
    keptCallSlot = nullptr;
    giveBack(static_cast<CallSlot*>(slot));
}

struct ThreadEnd {
    ThreadEnd() : isKnown(pthread_key_create(&key, giveBackKept) == 0) {}
    pthread_key_t key{};
    bool isKnown;
};

// If the system cannot report the end of the thread, each call takes a slot and gives it back.
void keep(CallSlot* slot) noexcept {
    static const ThreadEnd end;
    if (end.isKnown && pthread_setspecific(end.key, slot) == 0) keptCallSlot = slot;
}

CallSlot* freeSlot() noexcept {
    for (CallSlot* slot = slots; slot != nullptr; slot = slot->next) {
        if (!slot->isTaken.exchange(true)) return slot;
    }
    return nullptr;
}

CallSlot* newSlot() noexcept {
    auto* const slot = new (std::nothrow) CallSlot;
    if (slot == nullptr) return nullptr;
    slot->next = slots;
    while (!slots.compare_exchange_weak(slot->next, slot)) {}
    return slot;
}

}  // namespace

CallSlot* takeCallSlot() noexcept {
    CallSlot* const free = freeSlot();
    CallSlot* const slot = free == nullptr ? newSlot() : free;
    if (slot != nullptr && keptCallSlot == nullptr) keep(slot);
    return slot;
}

void giveBack(CallSlot* slot) noexcept { slot->isTaken = false; }

void prepareForCalls() {
    static const bool isPrepared = [] {
        announcesWithFence = !fenceThreads(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED);
        return pthread_atfork(nullptr, nullptr, forgetOtherThreads) == 0;
    }();
    static_cast<void>(isPrepared);
    if (keptCallSlot != nullptr) return;
    if (CallSlot* const slot = takeCallSlot(); slot != keptCallSlot) giveBack(slot);
}

bool haveOtherThreadsCalled() {
    for (const CallSlot* slot = slots; slot != nullptr; slot = slot->next) {
        if (slot != keptCallSlot && slot->isTaken) return true;
    }
    return false;
}

void waitForCallsOf(const HostState& host) {
    constexpr std::chrono::microseconds kPause(50);
    if (!announcesWithFence) fenceThreads(MEMBARRIER_CMD_PRIVATE_EXPEDITED);
    for (const CallSlot* slot = slots; slot != nullptr; slot = slot->next) {
        while (slot != keptCallSlot && slot->host == &host) std::this_thread::sleep_for(kPause);
    }
}

}  // namespace vexa::standin
