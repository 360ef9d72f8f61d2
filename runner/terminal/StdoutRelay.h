#pragma once

#include <string>

namespace vexa::runner {

/// Stands between what prints to the standard output and the terminal it goes to: while it lives, descriptor 1 is a
/// pipe, and what comes through it is passed on by pass().
///
/// So whoever draws on the same terminal can make room first. Whole lines are passed on; the start of one may be held
/// back. Where the pipe cannot be made, the standard output is left as it is.
/// Threads: one at a time.
class StdoutRelay {
public:
    /// To be called before anything is printed.
    StdoutRelay();
    StdoutRelay(const StdoutRelay&) = delete;
    StdoutRelay& operator=(const StdoutRelay&) = delete;
    /// Passes on what is left, and gives the standard output back.
    ~StdoutRelay();

    /// A descriptor that is readable when there is something to pass on; negative when nothing is relayed.
    int readable() const { return m_pipe; }
    /// Takes what was printed, without waiting for more.
    /// \return what can be passed on: the whole lines, and the start of a line unless \p wholeLinesOnly.
    std::string take(bool wholeLinesOnly);
    /// Puts \p text on the real standard output.
    void pass(const std::string& text);
    /// Whether what was passed on last ended in the middle of a line.
    bool isWithinLine() const { return m_isWithinLine; }

private:
    void readPipe();

    int m_real = -1;
    int m_pipe = -1;
    std::string m_held;
    bool m_isWithinLine = false;
};

}  // namespace vexa::runner
