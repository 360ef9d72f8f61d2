#pragma once

#include <string>

namespace vexa::runner {

/// What messages call the standard output.
inline constexpr const char* kStandardOutputName = "<stdout>";

/// Whether \p path names the standard input: `-`, `/dev/stdin`, or descriptor 0 in `/dev/fd` or `/proc/self/fd`.
bool isStandardInput(const std::string& path);
/// Whether \p path names the standard output, in the same ways.
bool isStandardOutput(const std::string& path);

/// Gives the standard output to the caller alone: what the program and its add-ons print goes to the standard error
/// output from now on.
/// \return a descriptor for what was the standard output. The caller closes it.
/// \throws OutputError when the standard output is closed.
int takeStandardOutput();

}  // namespace vexa::runner
