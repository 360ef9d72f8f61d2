#pragma once

namespace vexa::layer {

/// Addresses that the system has mapped as one piece.
struct MemoryRange {
    const void* begin = nullptr;
    const void* end = nullptr;

    bool has(const void* address) const { return address >= begin && address < end; }
};

/// The range that has \p address; an empty one if it cannot be found. It allocates nothing.
MemoryRange rangeAround(const void* address);

}  // namespace vexa::layer
