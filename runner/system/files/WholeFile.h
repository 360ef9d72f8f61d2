#pragma once

#include <cstddef>
#include <limits>
#include <string>

#include "system/Descriptor.h"

namespace vexa::runner {

/// Reads all bytes of a file, a pipe or a device.
/// \throws std::system_error if it cannot be read.
std::string readWholeFile(const std::string& path);

/// Opens a file, a device or a pipe of a process substitution. `-` is the standard input. Refuses a named pipe, because
/// reading it may wait forever for a writer.
/// \throws std::system_error if it cannot be opened.
Descriptor openInput(const std::string& path);

constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

/// Reads all bytes of an input that openInput() opens, which may be endless.
/// \throws std::system_error if it cannot be read, or has more than \p most bytes.
std::string readInput(const std::string& path, std::size_t most = kNoLimit);

/// Reads all bytes of the standard input, as readInput() does.
std::string readStandardInput();

}  // namespace vexa::runner
