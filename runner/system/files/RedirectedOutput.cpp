#include "system/files/RedirectedOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace vexa::runner {

RedirectedOutput::RedirectedOutput(int output, const std::string& file)
    : m_output(output), m_real(fcntl(output, F_DUPFD_CLOEXEC, STDERR_FILENO + 1)) {
    std::fflush(stdout);
    const int target = open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    dup2(target, m_output);
    close(target);
}

RedirectedOutput::~RedirectedOutput() {
    std::fflush(stdout);
    if (m_real < 0) return;
    dup2(m_real, m_output);
    close(m_real);
}

}  // namespace vexa::runner
