#pragma once

#include <string>

namespace vexa::standin {

/// Returns why the system's loader must not load the file \p path: it cannot be opened or read, is not a shared object,
/// is for another machine, or is truncated, so that a signal would end the process. Empty if the loader may try.
std::string whyNotLoadable(const std::string& path);

}  // namespace vexa::standin
