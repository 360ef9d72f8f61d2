#pragma once

#include <atomic>
#include <cstddef>

namespace vexa::runner {

/// Functions that `libvexaallocations.so` calls for each block of memory that the process gets from malloc() and its
/// relatives. The system's loader must load this library before the C library.
///
/// Threads: any thread may call the functions, at any time.
struct AllocationHooks {
    void (*allocated)(void* block, std::size_t size);  ///< after the allocation; \p size as requested
    void (*released)(void* block);                     ///< before the release
};

/// The variable of the library, null at first. The hooks must live until another value is stored and no thread is in
/// them any more.
using AllocationHooksVariable = std::atomic<const AllocationHooks*>;
inline constexpr const char* kAllocationHooksVariable = "vexaAllocationHooks";

}  // namespace vexa::runner
