#pragma once

#include <string>

namespace vexa::runner {

/// All bytes of a file, a pipe or a device.
/// \throws std::system_error when it cannot be read.
std::string readWholeFile(const std::string& path);

/// The same for a file, a device or a pipe that a process substitution made. `-` is the standard input. A pipe in the
/// file system is refused: reading it may wait for a writer for ever.
/// \throws std::system_error when it cannot be read.
std::string readInput(const std::string& path);

/// The same for the standard input, from where it stands.
std::string readStandardInput();

}  // namespace vexa::runner
