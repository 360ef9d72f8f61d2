#pragma once

#include <cstddef>
#include <string>

#include "system/NonCopyable.h"

namespace vexa::runner {

/// What code of add-ons has allocated.
struct AllocationCount {
    std::size_t allocations = 0;
    std::size_t peakBytes = 0;  ///< the most bytes that these allocations had at once
};

/// Counts the allocations of code of add-ons, on threads that the host calls: those of the host do not count, and
/// neither do those of threads that an add-on has started. Memory counts with the requested size, from its allocation
/// until any thread releases it.
///
/// The counts need `libvexaallocations.so`, which the system's loader must load with the program.
class AllocationCounter : NonCopyable {
public:
    /// Starts to count. One counter may count at a time.
    AllocationCounter();
    /// Stops counting.
    ~AllocationCounter();

    /// Returns what the counter that exists has counted.
    static AllocationCount count();
};

/// Makes sure that this program can count allocations: if the library is not loaded, starts the program again, with the
/// library. Call it before the program has done anything.
/// \return why allocations cannot be counted; empty if they can.
std::string prepareToCountAllocations();

}  // namespace vexa::runner
