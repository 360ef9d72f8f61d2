#pragma once

#include <stdexcept>

namespace vexa::tests {

/// Which allocations fail once the first one has.
enum class Failing {
    Once,      ///< only that one: memory was short for a moment
    EverAfter  ///< all: memory is used up
};

/// Lets allocations of this thread fail with `std::bad_alloc`, from construction to destruction. Works in programs
/// that compile FailingAllocator.cpp, which replaces `operator new` and `operator delete`.
///
///     const FailingAllocator failing(3, Failing::Once);   // three succeed, the fourth fails
///     EXPECT_THROW(set.assign(text), OutOfMemoryException);
///
/// Keep assertions outside: most allocate when they fail, some when they pass.
class FailingAllocator {
public:
    FailingAllocator(long allowed, Failing failing);
    FailingAllocator(const FailingAllocator&) = delete;
    FailingAllocator& operator=(const FailingAllocator&) = delete;
    ~FailingAllocator();

    /// Whether an allocation has failed.
    static bool hasFailed();
    /// The blocks allocated and not yet freed, by all threads.
    static long liveBlocks();
};

/// Runs `operation(allowed, failing)` with 0, 1, 2, ... allocations allowed, until a run asks for no more than it is
/// allowed. `operation` makes the FailingAllocator itself, around the one call that is meant, and returns whether an
/// allocation failed.
/// \return how many runs met a failure. Assert that it is not 0: a sweep without points shows nothing.
template <class Operation>
long sweepAllocations(Failing failing, Operation operation) {
    constexpr long kEndless = 100000;
    for (long allowed = 0; allowed < kEndless; ++allowed) {
        if (!operation(allowed, failing)) return allowed;
    }
    throw std::logic_error("The operation asks for ever more allocations, or never stops failing");
}

}  // namespace vexa::tests
