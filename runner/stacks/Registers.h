#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace vexa::runner {

/// The registers of a stopped thread, by their numbers in debug information.
struct Registers {
#if defined(__x86_64__)
    static constexpr std::size_t kCount = 17;  // the last one is the instruction pointer
    static constexpr std::size_t kStackPointer = 7;
#else
    static constexpr std::size_t kCount = 32;
    static constexpr std::size_t kStackPointer = 31;
#endif
    std::array<std::uint64_t, kCount> values{};
    std::uint64_t instruction = 0;  ///< the address of the next instruction
};

/// Returns the registers of \p thread, which this thread traces and which is stopped; nothing if it was killed, or on
/// machines other than x86-64 and AArch64.
std::optional<Registers> registersOf(pid_t thread);

}  // namespace vexa::runner
