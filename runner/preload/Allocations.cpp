// The library libvexaallocations.so, which replaces malloc() and its relatives in a process. It passes each call on to
// the C library, and tells the process about it.

#include <cerrno>
#include <cstddef>

#include "system/processes/AllocationHooks.h"

using vexa::runner::AllocationHooks;
using vexa::runner::AllocationHooksVariable;

#pragma GCC visibility push(default)

// NOLINTBEGIN(bugprone-reserved-identifier): these are the names of the C library
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void* __libc_valloc(std::size_t size);
void* __libc_pvalloc(std::size_t size);
void __libc_free(void* block);

AllocationHooksVariable vexaAllocationHooks{nullptr};
}

namespace {

void* told(void* block, std::size_t size) {
    const AllocationHooks* const hooks = vexaAllocationHooks;
    if (hooks != nullptr && block != nullptr) hooks->allocated(block, size);
    return block;
}

void tellReleased(void* block) {
    const AllocationHooks* const hooks = vexaAllocationHooks;
    if (hooks != nullptr && block != nullptr) hooks->released(block);
}

bool isAlignment(std::size_t alignment) { return alignment >= sizeof(void*) && (alignment & (alignment - 1)) == 0; }

}  // namespace

extern "C" {
void* malloc(std::size_t size) { return told(__libc_malloc(size), size); }
void* calloc(std::size_t count, std::size_t size) { return told(__libc_calloc(count, size), count * size); }

// If the C library refuses, the old block lives on, but counts as released.
void* realloc(void* block, std::size_t size) {
    tellReleased(block);
    return told(__libc_realloc(block, size), size);
}

void* reallocarray(void* block, std::size_t count, std::size_t size) {
    std::size_t all = 0;
    if (!__builtin_mul_overflow(count, size, &all)) return realloc(block, all);
    errno = ENOMEM;
    return nullptr;
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    if (!isAlignment(alignment)) return EINVAL;
    void* const found = told(__libc_memalign(alignment, size), size);
    if (found == nullptr) return ENOMEM;
    *block = found;
    return 0;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) { return told(__libc_memalign(alignment, size), size); }
void* memalign(std::size_t alignment, std::size_t size) { return told(__libc_memalign(alignment, size), size); }
void* valloc(std::size_t size) { return told(__libc_valloc(size), size); }
void* pvalloc(std::size_t size) { return told(__libc_pvalloc(size), size); }

void free(void* block) {
    tellReleased(block);
    __libc_free(block);
}
}
// NOLINTEND(bugprone-reserved-identifier)

#pragma GCC visibility pop
