/// \file
/// Allocations that fail. The program's operator new is replaced for it, in all its forms, and with it that of all
/// shared objects of the program but those that have one of their own.
#pragma once

#include <cstddef>

namespace vexa::runner {

/// Which allocations fail.
enum class Failing_e {
    None,      ///< none: they are only counted
    One,       ///< one
    FromThere  ///< that one and all behind it
};

/// Lets allocations of the calling thread fail while this lives, but only those of add-ons: not what the host
/// allocates on the way.
class AllocationFaults {
public:
    /// \param nth which allocation is the first to fail, counted from 1.
    explicit AllocationFaults(Failing_e failing, std::size_t nth = 1);
    AllocationFaults(const AllocationFaults&) = delete;
    AllocationFaults& operator=(const AllocationFaults&) = delete;
    ~AllocationFaults();

    /// How many allocations the add-ons asked for since this was constructed.
    static std::size_t count();
};

}  // namespace vexa::runner
