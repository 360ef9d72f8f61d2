#include "FailingAllocation.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr long kNoneIsToFail = -1;

thread_local long successesLeft = kNoneIsToFail;

}  // namespace

void failAllocationAfter(long successes) { successesLeft = successes; }

bool stopFailingAllocation() {
    const bool failed = successesLeft == kNoneIsToFail;
    successesLeft = kNoneIsToFail;
    return failed;
}

void* operator new(std::size_t size) {
    if (successesLeft != kNoneIsToFail && successesLeft-- == 0) throw std::bad_alloc();
    if (void* const block = std::malloc(size == 0 ? 1 : size)) return block;
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept { std::free(block); }

void operator delete(void* block, std::size_t) noexcept { std::free(block); }
