/// \file
/// Failing allocations. The source replaces every form of operator new, for the program and for its shared objects that
/// do not have their own operator new.
#pragma once

#include <cstddef>
#include <limits>

namespace vexa::runner {

/// Makes allocations of the calling thread fail as long as this object lives. Allocations of the host do not count.
class AllocationFaults {
public:
    static constexpr std::size_t kNone = 0;
    static constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

    /// Makes the allocations with the numbers from \p first to \p last fail, counted from 1.
    AllocationFaults(std::size_t first, std::size_t last);
    AllocationFaults(const AllocationFaults&) = delete;
    AllocationFaults& operator=(const AllocationFaults&) = delete;
    ~AllocationFaults();

    /// Returns the number of allocations of the add-ons since the last object was constructed.
    static std::size_t count();
};

}  // namespace vexa::runner
