#pragma once

#include <csignal>
#include <optional>

#include "system/Descriptor.h"
#include "system/NonCopyable.h"

namespace vexa::runner {

/// A signal stops the command. The exception lets destructors clean up; then the program ends by that signal.
struct EndedBySignal {
    int signal;
};

/// The signals for which a process that watches others waits: those that end a program, the one with which a terminal
/// suspends it, and the end of a child. They are blocked as long as this object lives. Ignored signals stay ignored.
///
/// Create it before there is anything to clean up, while the process has one thread.
class AwaitedSignals : NonCopyable {
public:
    /// \throws std::system_error
    AwaitedSignals();
    ~AwaitedSignals();

    /// A descriptor that becomes readable when a signal arrives.
    int descriptor() const { return m_descriptor.get(); }
    /// The next signal that has arrived, if any.
    std::optional<int> next() const;
    /// The signals that were blocked before this object, for code that handles the awaited ones.
    const sigset_t& before() const { return m_before; }

private:
    sigset_t m_before{};
    Descriptor m_descriptor;
};

/// Whether \p signal ends the program at once. SIGINT does so only the second time.
bool endsProgram(int signal);

}  // namespace vexa::runner
