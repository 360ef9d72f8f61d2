#include "terminal/DiscardedOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace vexa::runner {

DiscardedOutput::DiscardedOutput() {
    std::fflush(stdout);
    m_real = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    close(nowhere);
}

DiscardedOutput::~DiscardedOutput() {
    std::fflush(stdout);
    dup2(m_real, STDOUT_FILENO);
    close(m_real);
}

}  // namespace vexa::runner
