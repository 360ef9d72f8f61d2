/// \file
/// Notes on where the last exceptions were thrown. They are no stacks yet, so that a note costs little, and allocates
/// nothing. Threads: any thread may call the functions.
#pragma once

#include <cstdint>
#include <vector>

namespace vexa::standin {

/// Notes that the calling thread is about to throw \p exception, the object that `__cxa_throw` gets.
void noteThrow(const void* exception) noexcept;
/// Returns the addresses of the code that threw \p exception, each within the instruction that calls, the innermost
/// first; empty if there is no note of it.
std::vector<std::uintptr_t> throwerOf(const void* exception);
/// Forgets what the calling thread has thrown: later exceptions may have the same address.
void forgetThrows();

}  // namespace vexa::standin
