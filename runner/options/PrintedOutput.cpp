#include "options/PrintedOutput.h"

#include <fcntl.h>
#include <stdio_ext.h>
#include <unistd.h>

#include <cstdio>

#include "terminal/Console.h"

namespace vexa::runner {

bool isOutputWhole() {
    // Flushes the buffer, because only then a full disk, or a descriptor that an add-on closed, shows.
    const bool isFlushed = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (isFlushed && fcntl(STDOUT_FILENO, F_GETFD) >= 0) return true;
    __fpurge(stdout);
    std::clearerr(stdout);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    if (nowhere > STDERR_FILENO) close(nowhere);
    return false;
}

ExitStatus_e checkOutput(ExitStatus_e status) {
    if (isOutputWhole()) return status;
    tell(kProgramName, "the standard output could not be written");
    return ExitStatus_e::BadUsageOrInput;
}

}  // namespace vexa::runner
