#pragma once

#include <cstdio>
#include <optional>
#include <string>
#include <utility>

#include "system/files/RedirectedOutput.h"

namespace vexa::runner {

/// Puts a pipe between the standard output and its terminal: as long as this object lives, descriptor 1 is the pipe.
///
/// The owner reads the pipe and calls pass(). Before that it can clear its own drawing on the same terminal. It may
/// pass on only whole lines, and hold back the start of a line. Threads: one at a time.
class StdoutRelay : NonCopyable {
public:
    /// Call it before anything is printed.
    /// \throws std::system_error
    StdoutRelay() {
        Pipe pipe;
        m_pipe = std::move(pipe.reader);
        m_redirected.emplace(STDOUT_FILENO, pipe.writer.get());
        // The C library buffers by line for a terminal only, and the standard output is now a pipe.
        std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    }
    /// Passes on the rest, and restores the standard output.
    ~StdoutRelay() {
        m_redirected.reset();
        writeAll(STDOUT_FILENO, take(false));
    }

    /// A descriptor that becomes readable when there is output to pass on.
    int readable() const { return m_pipe.get(); }
    /// Takes the output so far. Does not wait for more.
    /// \return the whole lines and, unless \p wholeLinesOnly, the start of the next line.
    std::string take(bool wholeLinesOnly) {
        readAvailable(m_pipe.get(), m_held);
        const std::size_t end = wholeLinesOnly ? m_held.rfind('\n') + 1 : m_held.size();
        std::string taken = m_held.substr(0, end);
        m_held.erase(0, end);
        return taken;
    }
    /// Writes \p text to the real standard output.
    void pass(const std::string& text) {
        if (text.empty()) return;
        writeAll(m_redirected->real(), text);
        m_isWithinLine = text.back() != '\n';
    }
    /// Returns true if the last text passed on ended in the middle of a line.
    bool isWithinLine() const { return m_isWithinLine; }

private:
    Descriptor m_pipe;
    std::optional<RedirectedOutput> m_redirected;
    std::string m_held;
    bool m_isWithinLine = false;
};

}  // namespace vexa::runner
