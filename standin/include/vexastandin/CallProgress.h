#pragma once

#include <atomic>
#include <cstddef>

namespace vexa::standin {

/// How far the host calls of a Host have come. Host::setCallProgress() places it, for example in memory that is shared
/// with a process that watches: what it holds outlives the process that makes the calls.
struct CallProgress {
    std::atomic<std::size_t> calls{0};         ///< how many calls have begun
    std::atomic<std::size_t> lastFunction{0};  ///< the function called last, as an index of hostFunctions(); meaningful
                                               ///< once a call has begun
};

}  // namespace vexa::standin
