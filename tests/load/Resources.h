#pragma once

#include <cstddef>

namespace vexa::load {

/// What the process holds. Under a sanitizer only the descriptors tell anything.
struct Resources {
    long residentKiB = 0;       ///< after free memory was given back to the system
    std::size_t heapInUse = 0;  ///< bytes
    long descriptors = 0;

    static Resources now();
};

/// Forgets the peak of the process's memory so far.
/// \return whether the system lets it be forgotten.
bool forgetPeakMemory();
/// The most memory that the process had at once since then, in KiB.
long peakMemoryKiB();

/// The processor time that the process has taken, in seconds. Other programs do not add to it.
double processorSeconds();

}  // namespace vexa::load
