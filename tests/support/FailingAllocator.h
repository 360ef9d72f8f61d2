#pragma once

#include <stdexcept>

namespace vexa::tests {

/// Which allocations fail, starting with the first failure.
enum class Failing {
    Once,      ///< only the first: memory was short for a moment
    EverAfter  ///< all: no memory is left
};

/// Makes allocations of this thread fail with `std::bad_alloc` while the object exists. The program must compile
/// FailingAllocator.cpp, which replaces `operator new` and `operator delete`.
///
///     const FailingAllocator failing(3, Failing::Once);   // three succeed, the fourth fails
///     EXPECT_THROW(set.assign(text), OutOfMemoryException);
///
/// Write no assertions while it exists: most allocate when they fail, some when they pass.
class FailingAllocator {
public:
    FailingAllocator(long allowed, Failing failing);
    FailingAllocator(const FailingAllocator&) = delete;
    FailingAllocator& operator=(const FailingAllocator&) = delete;
    ~FailingAllocator();

    /// Returns true if an allocation has failed.
    static bool hasFailed();
    /// Returns the number of blocks that all threads have allocated and not freed.
    static long liveBlocks();
};

/// Calls `operation(allowed, failing)` with `allowed` = 0, 1, 2, ... until no allocation fails. `operation` must create
/// the FailingAllocator around the tested call, and return true if an allocation failed.
/// \return the number of calls in which an allocation failed. Assert that it is not 0.
template <class Operation>
long sweepAllocations(Failing failing, Operation operation) {
    constexpr long kEndless = 100000;
    for (long allowed = 0; allowed < kEndless; ++allowed) {
        if (!operation(allowed, failing)) return allowed;
    }
    throw std::logic_error("The operation asks for ever more allocations, or never stops failing");
}

}  // namespace vexa::tests
