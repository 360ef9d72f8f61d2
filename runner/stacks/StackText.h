#pragma once

#include <string>

#include "stacks/Frame.h"

namespace vexa::runner {

/// Returns the place of a frame on one line: `src/Stats.cpp:42, in stats::summarize`; without a line
/// `stats::summarize+0x1c in libstats.so`; without a function `0x1139 in libstats.so`. The path of a source below the
/// current folder is relative. The parameters of the function are left out.
std::string textOf(const Frame& frame);

/// Returns a stack, one frame on a line with its number, the innermost first.
std::string textOf(const Stack& stack);

/// Returns the name of a function without its parameters: `stats::summarize` for `stats::summarize(int) const`.
std::string withoutParameters(const std::string& function);

}  // namespace vexa::runner
