#pragma once

#include <csignal>
#include <optional>

#include "system/Descriptor.h"
#include "system/NonCopyable.h"

namespace vexa::runner {

/// Reports a signal that ends the command. Destructors clean up, and then the program ends by that signal.
struct EndedBySignal {
    int signal;
};

/// The signals for which a watching process waits: signals that end a program, the signal with which a terminal
/// suspends it, and the end of a child. They are blocked as long as this object lives. Ignored signals stay ignored.
///
/// Create the object before there is anything to clean up, while the process has one thread.
class AwaitedSignals : NonCopyable {
public:
    /// \throws std::system_error
    AwaitedSignals();
    ~AwaitedSignals();

    /// Returns a descriptor that becomes readable when a signal arrives.
    int descriptor() const { return m_descriptor.get(); }
    /// Returns the next signal that has arrived, if any.
    std::optional<int> next() const;
    /// Returns true if next() has returned SIGINT.
    bool wasInterrupted() const { return m_wasInterrupted; }
    /// Returns the signals that were blocked before this object existed, for code that must receive the awaited
    /// signals.
    const sigset_t& before() const { return m_before; }

private:
    sigset_t m_before{};
    Descriptor m_descriptor;
    mutable bool m_wasInterrupted = false;
};

/// Returns true if \p signal ends the program at once. SIGINT does so only the second time.
bool endsProgram(int signal);

}  // namespace vexa::runner
