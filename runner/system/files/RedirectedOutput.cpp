#include "system/files/RedirectedOutput.h"

#include <fcntl.h>

#include <cstdio>

namespace vexa::runner {

RedirectedOutput::RedirectedOutput(int output, int target)
    : m_output(output), m_real(fcntl(output, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
    std::fflush(stdout);
    dup2(target, m_output);
}

RedirectedOutput::~RedirectedOutput() {
    std::fflush(stdout);
    if (m_real.isOpen()) dup2(m_real.get(), m_output);
}

}  // namespace vexa::runner
