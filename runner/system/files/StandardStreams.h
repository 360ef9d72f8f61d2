#pragma once

#include <string>

namespace vexa::runner {

/// The names of the standard input and the standard output in messages.
inline constexpr const char* kStandardInputName = "<stdin>";
inline constexpr const char* kStandardOutputName = "<stdout>";

/// Returns true if \p path names the standard input: `-`, `/dev/stdin`, or descriptor 0 in `/dev/fd` or
/// `/proc/self/fd`.
inline bool isStandardInput(const std::string& path) {
    return path == "-" || path == "/dev/stdin" || path == "/dev/fd/0" || path == "/proc/self/fd/0";
}

/// Returns true if \p path names the standard output: `-`, `/dev/stdout`, or descriptor 1 in `/dev/fd` or
/// `/proc/self/fd`.
inline bool isStandardOutput(const std::string& path) {
    return path == "-" || path == "/dev/stdout" || path == "/dev/fd/1" || path == "/proc/self/fd/1";
}

}  // namespace vexa::runner
