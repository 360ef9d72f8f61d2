#pragma once

#include <string>

namespace vexa::standin {

/// Why the system's loader must not be given the file \p path: it cannot be opened, is no shared object, is for another
/// machine, or is truncated, which would end the process by a signal. Empty when nothing is known against it.
std::string whyNotLoadable(const std::string& path);

}  // namespace vexa::standin
