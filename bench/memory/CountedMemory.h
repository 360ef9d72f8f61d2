/// \file
/// Counts the memory that operator new allocates, in the program that links this and in its libraries.
#pragma once

#include <cstddef>

namespace vexa::bench {

std::size_t bytesInUse();
/// Returns the largest amount in use since forgetPeak().
std::size_t peakBytes();
void forgetPeak();

}  // namespace vexa::bench
