#pragma once

#include <stdexcept>
#include <string>

namespace vexa::runner {

/// A file cannot be written. The message is one line: the file, and the reason.
class OutputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// \throws OutputError, always.
[[noreturn]] void refuseOutput(const std::string& path, const std::string& why);
/// The same, with the reason in errno.
[[noreturn]] void refuseOutput(const std::string& path);

/// The file that a write to \p path changes: follows symbolic links, also one to a file that does not exist yet. Two
/// paths of one file have the same result.
/// \throws OutputError if the folder does not exist, or if \p path exists and is not a writable regular file.
std::string outputTarget(const std::string& path);

/// Whether \p path is the standard output, a pipe or a character device. Those are written to directly.
bool isStream(const std::string& path);

}  // namespace vexa::runner
