#include "support/FailingAllocator.h"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace vexa::tests {
namespace {

struct Plan {
    bool isActive = false;
    bool hasFailed = false;
    long allowed = 0;
    Failing failing = Failing::Once;
};

thread_local Plan t_plan;
std::atomic<long> s_liveBlocks{0};

bool mayAllocate() {
    if (!t_plan.isActive) return true;
    if (t_plan.hasFailed) return t_plan.failing == Failing::Once;
    if (t_plan.allowed-- > 0) return true;
    t_plan.hasFailed = true;
    return false;
}

void* allocate(std::size_t size, std::size_t alignment) noexcept {
    if (!mayAllocate()) return nullptr;
    const std::size_t rounded = (size + alignment - 1) / alignment * alignment;  // aligned_alloc() requires it
    void* const block = std::aligned_alloc(alignment, rounded == 0 ? alignment : rounded);
    if (block != nullptr) ++s_liveBlocks;
    return block;
}

void* allocateOrThrow(std::size_t size, std::size_t alignment) {
    void* const block = allocate(size, alignment);
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

void release(void* block) noexcept {
    if (block != nullptr) --s_liveBlocks;
    std::free(block);
}

constexpr std::size_t kPlain = alignof(std::max_align_t);
std::size_t of(std::align_val_t alignment) { return static_cast<std::size_t>(alignment); }

}  // namespace

FailingAllocator::FailingAllocator(long allowed, Failing failing) { t_plan = {true, false, allowed, failing}; }

FailingAllocator::~FailingAllocator() { t_plan.isActive = false; }

bool FailingAllocator::hasFailed() { return t_plan.hasFailed; }

long FailingAllocator::liveBlocks() { return s_liveBlocks; }

}  // namespace vexa::tests

using namespace vexa::tests;
using std::align_val_t;
using std::nothrow_t;
using std::size_t;

void* operator new(size_t size) { return allocateOrThrow(size, kPlain); }
void* operator new[](size_t size) { return allocateOrThrow(size, kPlain); }
void* operator new(size_t size, align_val_t alignment) { return allocateOrThrow(size, of(alignment)); }
void* operator new[](size_t size, align_val_t alignment) { return allocateOrThrow(size, of(alignment)); }
void* operator new(size_t size, const nothrow_t&) noexcept { return allocate(size, kPlain); }
void* operator new[](size_t size, const nothrow_t&) noexcept { return allocate(size, kPlain); }
void* operator new(size_t size, align_val_t alignment, const nothrow_t&) noexcept {
    return allocate(size, of(alignment));
}
void* operator new[](size_t size, align_val_t alignment, const nothrow_t&) noexcept {
    return allocate(size, of(alignment));
}

void operator delete(void* block) noexcept { release(block); }
void operator delete[](void* block) noexcept { release(block); }
void operator delete(void* block, size_t) noexcept { release(block); }
void operator delete[](void* block, size_t) noexcept { release(block); }
void operator delete(void* block, align_val_t) noexcept { release(block); }
void operator delete[](void* block, align_val_t) noexcept { release(block); }
void operator delete(void* block, size_t, align_val_t) noexcept { release(block); }
void operator delete[](void* block, size_t, align_val_t) noexcept { release(block); }
void operator delete(void* block, const nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, const nothrow_t&) noexcept { release(block); }
void operator delete(void* block, align_val_t, const nothrow_t&) noexcept { release(block); }
void operator delete[](void* block, align_val_t, const nothrow_t&) noexcept { release(block); }
