/// \file
/// Allocations that fail. This replaces operator new in all its forms, for the program and for its shared objects that
/// have no operator new of their own.
#pragma once

#include <cstddef>
#include <limits>

namespace vexa::runner {

/// Makes allocations of the calling thread fail while this object lives. Allocations of the host do not count.
class AllocationFaults {
public:
    static constexpr std::size_t kNone = 0;
    static constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

    /// Makes the allocations with the numbers from \p first to \p last fail, counted from 1.
    AllocationFaults(std::size_t first, std::size_t last);
    AllocationFaults(const AllocationFaults&) = delete;
    AllocationFaults& operator=(const AllocationFaults&) = delete;
    ~AllocationFaults();

    /// How many allocations the add-ons have asked for since the last object was constructed.
    static std::size_t count();
};

}  // namespace vexa::runner
