#include "commands/check/trial/AllocationFaults.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "vexastandin/Host.h"

namespace vexa::runner {
namespace {

struct Plan {
    bool isArmed;
    std::size_t first;
    std::size_t last;
    std::size_t count;
};

// Decides what operator new does on this thread. Initialized by constants, because allocations start before
// constructors run.
thread_local Plan plan = {false, 0, 0, 0};

// Counts an allocation of an add-on, and returns true if it must fail.
bool isToFail() {
    if (!plan.isArmed || !standin::Host::isInAddOn()) return false;
    ++plan.count;
    return plan.first <= plan.count && plan.count <= plan.last;
}

constexpr std::align_val_t kUsual{alignof(std::max_align_t)};

void* allocate(std::size_t size, std::align_val_t alignment = kUsual) {
    if (isToFail()) throw std::bad_alloc();
    for (;;) {
        void* block = nullptr;
        const std::size_t boundary = std::max(static_cast<std::size_t>(alignment), alignof(std::max_align_t));
        if (posix_memalign(&block, boundary, std::max<std::size_t>(size, 1)) == 0) return block;
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) throw std::bad_alloc();
        handler();
    }
}

void* tryToAllocate(std::size_t size, std::align_val_t alignment = kUsual) noexcept {
    try {
        return allocate(size, alignment);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace

AllocationFaults::AllocationFaults(std::size_t first, std::size_t last) { plan = {true, first, last, 0}; }

AllocationFaults::~AllocationFaults() { plan.isArmed = false; }

std::size_t AllocationFaults::count() { return plan.count; }

}  // namespace vexa::runner

using vexa::runner::allocate;
using vexa::runner::tryToAllocate;

// Libraries must find all of them here. clang takes those with a size for functions like any other, and would hide
// them.
#pragma GCC visibility push(default)
// NOLINTBEGIN(cppcoreguidelines-no-malloc,hicpp-no-malloc)
void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment) { return allocate(size, alignment); }
void* operator new[](std::size_t size, std::align_val_t alignment) { return allocate(size, alignment); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return tryToAllocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return tryToAllocate(size); }
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return tryToAllocate(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return tryToAllocate(size, alignment);
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
#pragma GCC visibility pop
