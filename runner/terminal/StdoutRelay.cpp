#include "terminal/StdoutRelay.h"

#include <cstdio>

namespace vexa::runner {

// Writers wait, as they do for a terminal. The reader never waits.
StdoutRelay::StdoutRelay() {
    Pipe pipe;
    m_pipe = std::move(pipe.reader);
    m_redirected.emplace(STDOUT_FILENO, pipe.writer.get());
    // The C library buffers by line for a terminal only, and the standard output is now a pipe.
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}

StdoutRelay::~StdoutRelay() {
    m_redirected.reset();
    writeAll(STDOUT_FILENO, take(false));
}

std::string StdoutRelay::take(bool wholeLinesOnly) {
    readAvailable(m_pipe.get(), m_held);
    const std::size_t end = wholeLinesOnly ? m_held.rfind('\n') + 1 : m_held.size();
    std::string taken = m_held.substr(0, end);
    m_held.erase(0, end);
    return taken;
}

void StdoutRelay::pass(const std::string& text) {
    if (text.empty()) return;
    writeAll(m_redirected->real(), text);
    m_isWithinLine = text.back() != '\n';
}

}  // namespace vexa::runner
