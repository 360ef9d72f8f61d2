#pragma once

#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

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

/// \throws OutputError when \p output is one of the files \p taken, whatever they are called.
void refuseTaken(const std::string& output, const std::vector<std::string>& taken);

}  // namespace vexa::runner
