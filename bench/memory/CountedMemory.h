/// \file
/// What operator new has handed out, in a program that is linked with this, its libraries included.
#pragma once

#include <cstddef>

namespace vexa::bench {

std::size_t bytesInUse();
/// The most that was in use since forgetPeak().
std::size_t peakBytes();
void forgetPeak();

}  // namespace vexa::bench
