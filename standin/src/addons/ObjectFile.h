#pragma once

#include <string>

namespace vexa::standin {

/// Why the system's loader must not get the file \p path: it cannot be opened, is no shared object, is for another
/// machine, or is truncated, in which case a signal would end the process. Empty if the loader may try.
std::string whyNotLoadable(const std::string& path);

}  // namespace vexa::standin
