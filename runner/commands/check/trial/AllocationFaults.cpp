#include "commands/check/trial/AllocationFaults.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "vexastandin/Host.h"

namespace vexa::runner {
namespace {

struct Plan {
    bool isArmed;
    Failing_e failing;
    std::size_t nth;
    std::size_t count;
};

// What operator new is to do is known to the thread only; constant from the start, so that it holds at any time.
thread_local Plan plan = {false, Failing_e::None, 0, 0};

// Counts an allocation that an add-on asks for.
bool isToFail() {
    if (!plan.isArmed || !standin::Host::isInAddOn()) return false;
    ++plan.count;
    switch (plan.failing) {
        case Failing_e::One: return plan.count == plan.nth;
        case Failing_e::FromThere: return plan.count >= plan.nth;
        case Failing_e::None: break;
    }
    return false;
}

void* blockOf(std::size_t size, std::size_t alignment) noexcept {
    if (alignment <= alignof(std::max_align_t)) return std::malloc(std::max<std::size_t>(size, 1));
    void* block = nullptr;
    return posix_memalign(&block, alignment, std::max<std::size_t>(size, 1)) == 0 ? block : nullptr;
}

void* allocate(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) {
    if (isToFail()) throw std::bad_alloc();
    for (;;) {
        if (void* const block = blockOf(size, alignment)) return block;
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) throw std::bad_alloc();
        handler();
    }
}

void* tryToAllocate(std::size_t size, std::size_t alignment = alignof(std::max_align_t)) noexcept {
    try {
        return allocate(size, alignment);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

std::size_t number(std::align_val_t alignment) { return static_cast<std::size_t>(alignment); }

}  // namespace

AllocationFaults::AllocationFaults(Failing_e failing, std::size_t nth) { plan = {true, failing, nth, 0}; }

AllocationFaults::~AllocationFaults() { plan.isArmed = false; }

std::size_t AllocationFaults::count() { return plan.count; }

}  // namespace vexa::runner

using vexa::runner::allocate;
using vexa::runner::number;
using vexa::runner::tryToAllocate;

// NOLINTBEGIN(cppcoreguidelines-no-malloc,hicpp-no-malloc)
void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return allocate(size, number(alignment)); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return allocate(size, number(alignment)); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return tryToAllocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return tryToAllocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return tryToAllocate(size, number(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return tryToAllocate(size, number(alignment));
}

void operator delete(void* block) noexcept { std::free(block); }
void operator delete[](void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept { std::free(block); }
void operator delete(void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept { std::free(block); }
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept { std::free(block); }
// NOLINTEND(cppcoreguidelines-no-malloc,hicpp-no-malloc)
