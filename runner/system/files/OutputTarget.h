#pragma once

#include <stdexcept>
#include <string>

namespace vexa::runner {

/// Reports a file that cannot be written. The message is one line: the file, and the reason.
class OutputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// \throws OutputError, always.
[[noreturn]] void refuseOutput(const std::string& path, const std::string& why);
/// Throws an OutputError with the reason in errno. ENOENT becomes "its folder does not exist".
[[noreturn]] void refuseOutput(const std::string& path);

/// Returns the file that a write to \p path changes. Follows symbolic links, even a link to a missing file. Two paths
/// of the same file have the same result. \throws OutputError if the folder does not exist, or if \p path exists and is
/// not a writable regular file.
std::string outputTarget(const std::string& path);

/// Returns true if \p path is the standard output, a pipe or a character device, which are written directly.
bool isStream(const std::string& path);

}  // namespace vexa::runner
