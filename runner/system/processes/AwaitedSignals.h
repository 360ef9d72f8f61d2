#pragma once

#include <csignal>
#include <optional>

namespace vexa::runner {

/// A signal ended what a command was about. Thrown so that all is cleaned up; the program then ends by that signal.
struct EndedBySignal {
    int signal;
};

/// The signals that a process which watches others waits for, blocked as long as this lives: those that end a program,
/// the one that a terminal suspends it with, and the end of a child. Those that were ignored stay so.
///
/// To be made before there is anything to clean up, while there is one thread.
class AwaitedSignals {
public:
    /// \throws std::system_error
    AwaitedSignals();
    AwaitedSignals(const AwaitedSignals&) = delete;
    AwaitedSignals& operator=(const AwaitedSignals&) = delete;
    ~AwaitedSignals();

    /// A descriptor that is readable when a signal has come.
    int descriptor() const { return m_descriptor; }
    /// The next signal that has come; nothing when there is none.
    std::optional<int> next() const;
    /// The signals that were blocked before.
    const sigset_t& before() const { return m_before; }

    /// For the time between two processes.
    /// \throws EndedBySignal when one has come that ends the program.
    void throwIfEnded() const;

private:
    sigset_t m_before{};
    int m_descriptor;
};

/// Lets the signals through as long as this lives, for what handles them itself.
class UnblockedSignals {
public:
    explicit UnblockedSignals(const AwaitedSignals& signals) {
        sigprocmask(SIG_SETMASK, &signals.before(), &m_blocked);
    }
    UnblockedSignals(const UnblockedSignals&) = delete;
    UnblockedSignals& operator=(const UnblockedSignals&) = delete;
    ~UnblockedSignals() { sigprocmask(SIG_SETMASK, &m_blocked, nullptr); }

private:
    sigset_t m_blocked{};
};

/// Whether \p signal asks the program to end at once. SIGINT does so the second time only.
bool endsProgram(int signal);

}  // namespace vexa::runner
