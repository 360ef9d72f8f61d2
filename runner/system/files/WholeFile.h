#pragma once

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

/// Reads all bytes of an input that openInput() opens.
/// \throws std::system_error if it cannot be read.
std::string readInput(const std::string& path);

/// Reads all bytes of the standard input, as readInput() does.
std::string readStandardInput();

}  // namespace vexa::runner
