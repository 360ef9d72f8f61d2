#pragma once

#include <stdexcept>
#include <string>

namespace vexa::runner {

/// A file that cannot be written. The message is one line: the file, and why.
class OutputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// \throws OutputError, always.
[[noreturn]] void refuseOutput(const std::string& path, const std::string& why);
/// The same with the reason that errno tells.
[[noreturn]] void refuseOutput(const std::string& path);

/// The file that is written through \p path: symbolic links are followed, one that points to no file included, for the
/// file is made where it points. Equal for two ways to name one file.
/// \throws OutputError when its folder is missing, and for what exists and is no regular file that may be written.
std::string outputTarget(const std::string& path);

/// Whether \p path is written to as it is: the standard output, a pipe or a device of characters.
bool isStream(const std::string& path);

/// Opens \p path for writing. A regular file is emptied, or made; a stream is opened as it is. `-` is the standard
/// output; the caller has it alone then, for what the program and its add-ons print goes to the standard error output.
/// \return a descriptor. The caller closes it.
/// \throws OutputError, also for a pipe that nobody reads, and for a standard output that is closed.
int openOutput(const std::string& path);

}  // namespace vexa::runner
