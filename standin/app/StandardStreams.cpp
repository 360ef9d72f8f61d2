#include "StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "OutputTarget.h"

namespace vexa::runner {
namespace {

bool names(const std::string& path, const char* device, int descriptor) {
    const std::string number = std::to_string(descriptor);
    return path == "-" || path == device || path == "/dev/fd/" + number || path == "/proc/self/fd/" + number;
}

}  // namespace

bool isStandardInput(const std::string& path) { return names(path, "/dev/stdin", STDIN_FILENO); }

bool isStandardOutput(const std::string& path) { return names(path, "/dev/stdout", STDOUT_FILENO); }

int takeStandardOutput() {
    std::fflush(stdout);
    const int flags = fcntl(STDOUT_FILENO, F_GETFL);
    if (flags < 0) refuseOutput(kStandardOutputName);
    // The program opens a closed standard output for reading, so that nothing else gets its number.
    if ((flags & O_ACCMODE) == O_RDONLY) refuseOutput(kStandardOutputName, "it is closed");
    const int descriptor = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    if (descriptor < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0) refuseOutput(kStandardOutputName);
    return descriptor;
}

}  // namespace vexa::runner
