#pragma once

#include <sys/types.h>

namespace vexa::runner {

/// \name Whether a process looks for leaks at its end
/// The leak sanitizer then traces its own process, and ends it with an error if another one does.
/// @{
/// This process.
bool hasLeakSanitizer();
/// Another process. The sanitizer is in its program, or in a library.
bool hasLeakSanitizer(pid_t process);
/// @}

}  // namespace vexa::runner
