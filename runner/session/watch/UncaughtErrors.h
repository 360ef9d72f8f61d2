#pragma once

#include <functional>

namespace vexa::runner {

/// Runs a program, or the work of a process, and prints one line about an exception that escapes from it.
/// \return what \p work returns; after an exception the exit status of wrong input.
/// \throws EndedBySignal if \p work throws it.
int printUncaughtErrors(const std::function<int()>& work);

}  // namespace vexa::runner
