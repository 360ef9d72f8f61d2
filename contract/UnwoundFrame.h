#pragma once

#include <unwind.h>

#include <cstddef>
#include <cstdint>

namespace vexa::standin {

/// The most calls of a stack that are noted.
constexpr std::size_t kMostCalls = 48;

/// A frame of the calling thread's stack, as the unwinder shows it.
struct UnwoundFrame {
    std::uintptr_t address = 0;  ///< of the next instruction; 0 beyond the end of the stack
    bool isInterrupted = false;  ///< by a signal, so that the frame has called nothing

    /// Returns an address within the instruction that the frame runs.
    std::uintptr_t place() const { return isInterrupted ? address : address - 1; }
};

inline UnwoundFrame frameOf(_Unwind_Context* context) {
    int isBefore = 0;
    const std::uintptr_t address = _Unwind_GetIPInfo(context, &isBefore);
    return {address, isBefore != 0};
}

}  // namespace vexa::standin
