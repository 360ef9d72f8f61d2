/// \file
/// Time limits are counted in steps, so that they leave out time in which the system did not run the process, for
/// example because the machine was suspended.
#pragma once

#include <chrono>

namespace vexa::runner {

constexpr std::chrono::milliseconds kTimeStep{20};
/// A step counts as at most this. It is longer than a step takes on a busy machine.
constexpr std::chrono::milliseconds kLongestTimeStep{100};

}  // namespace vexa::runner
