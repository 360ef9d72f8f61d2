#pragma once

#include <string>

namespace vexa::runner {

/// All bytes of a file, a pipe or a device.
/// \throws std::system_error when it cannot be read.
std::string readWholeFile(const std::string& path);

/// The same for the standard input, from where it stands.
std::string readStandardInput();

}  // namespace vexa::runner
