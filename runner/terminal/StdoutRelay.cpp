#include "terminal/StdoutRelay.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>

#include "system/files/Descriptor.h"

namespace vexa::runner {

StdoutRelay::StdoutRelay() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) return;
    m_real = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    // Writers wait, as they do for a terminal. The reader never waits.
    const bool ready = m_real >= 0 && fcntl(ends[0], F_SETFL, O_NONBLOCK) == 0 && dup2(ends[1], STDOUT_FILENO) >= 0;
    close(ends[1]);
    if (!ready) {
        close(ends[0]);
        return;
    }
    m_pipe = ends[0];
    // The C library buffers by line for a terminal only, and the standard output is now a pipe.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

StdoutRelay::~StdoutRelay() {
    if (m_pipe >= 0) {
        dup2(m_real, STDOUT_FILENO);
        pass(take(false));
        close(m_pipe);
    }
    if (m_real >= 0) close(m_real);
}

std::string StdoutRelay::take(bool wholeLinesOnly) {
    readPipe();
    const std::size_t end = wholeLinesOnly ? m_held.rfind('\n') + 1 : m_held.size();
    std::string taken = m_held.substr(0, end);
    m_held.erase(0, end);
    return taken;
}

void StdoutRelay::pass(const std::string& text) {
    if (text.empty()) return;
    writeAll(m_real, text);
    m_isWithinLine = text.back() != '\n';
}

void StdoutRelay::readPipe() {
    std::array<char, 4096> chunk{};
    ssize_t count = 0;
    while (m_pipe >= 0 && (count = read(m_pipe, chunk.data(), chunk.size())) > 0) {
        m_held.append(chunk.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace vexa::runner
