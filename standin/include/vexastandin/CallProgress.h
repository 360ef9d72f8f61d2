#pragma once

#include <atomic>
#include <cstddef>

namespace vexa::standin {

/// Counts the host calls of a Host; see Host::setCallProgress(). Put it into shared memory to let another process watch
/// the calls. That process can read it even after the calling process has crashed.
struct CallProgress {
    std::atomic<std::size_t> calls{0};         ///< the number of calls that have started
    std::atomic<std::size_t> lastFunction{0};  ///< the last function called, as an index of hostFunctions(); undefined
                                               ///< while `calls` is 0
};

}  // namespace vexa::standin
