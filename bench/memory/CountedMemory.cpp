#include "memory/CountedMemory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace {

std::size_t inUse = 0;
std::size_t peak = 0;

}  // namespace

void* operator new(std::size_t size) {
    void* const memory = std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    inUse += malloc_usable_size(memory);
    peak = std::max(peak, inUse);
    return memory;
}
void operator delete(void* memory) noexcept {
    inUse -= malloc_usable_size(memory);
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace vexa::bench {

std::size_t bytesInUse() { return inUse; }

std::size_t peakBytes() { return peak; }

void forgetPeak() { peak = inUse; }

}  // namespace vexa::bench
