#pragma once

#include <cstddef>

namespace vexa::load {

/// The resources that the process holds. With a sanitizer, only the number of descriptors is meaningful.
struct Resources {
    long residentKiB = 0;       ///< measured after free memory was returned to the system
    std::size_t heapInUse = 0;  ///< bytes
    long descriptors = 0;

    static Resources now();
};

/// Resets the peak of the process's memory.
/// \return true if the system allows it.
bool forgetPeakMemory();
/// Returns the peak of the process's memory since the last reset, in KiB.
long peakMemoryKiB();

/// Returns the processor time of this process, in seconds.
double processorSeconds();

}  // namespace vexa::load
