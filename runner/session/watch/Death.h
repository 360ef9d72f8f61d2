#pragma once

#include <chrono>
#include <cstddef>
#include <string>

#include "formats/Problem.h"
#include "session/watch/ProcessBox.h"
#include "session/watch/Processes.h"
#include "system/processes/Signals.h"
#include "trace/CrashEvent.h"
#include "vexastandin/Finding.h"

namespace vexa::runner {

/// The rule of the contract about add-ons that do not return.
inline constexpr const char* kCommandTimeout = "command-timeout";

/// Describes how a process ended: `exit status 0`, `SIGSEGV (Segmentation fault)`.
std::string howItEnded(int waitStatus);

/// The lines about a process that an add-on ended: the place, the command and the last host call; after a crash also
/// the stack.
std::string deathText(const ProcessBox& box, const ProcessOutcome& outcome);

/// Prints deathText().
void tellDeath(const ProcessBox& box, const ProcessOutcome& outcome);

/// The same as a problem. Its place is the line in the source of the add-on, if that is known, and otherwise the
/// command, or \p file.
Problem deathProblem(const ProcessBox& box, const ProcessOutcome& outcome, const std::string& file);

/// The same for a trace.
Crash crashOf(const ProcessBox& box, const ProcessOutcome& outcome);

/// The finding about an add-on that does not return.
/// \param last        the last host call, and the work of the add-on: Host::lastCall()
/// \param callsBefore how many host calls there were before the add-on was entered
/// \param limit       the time limit
standin::Finding hangFinding(const standin::Place& last, std::size_t callsBefore, std::chrono::duration<double> limit);

/// The same if the host calls are unknown.
/// \param work the command, or other work of the add-on
standin::Finding hangFinding(const standin::Place& work, std::chrono::duration<double> limit);

/// The finding about a process that was killed because it exceeded its time limit.
standin::Finding lateFinding(const ProcessBox& box);

/// The same as a problem, as deathProblem().
Problem lateProblem(const ProcessBox& box, const ProcessOutcome& outcome, const std::string& file);

/// Prints the stacks of a crash or a hang after a message about it.
void tellStacks(const StackReport& stacks);

/// Clears the status line if a process that has ended left it drawn.
void clearStatusOf(const ProcessBox& box);

/// Limits the time in which a program prints why it ends. If the output is a full pipe that nobody reads, the program
/// ends with \p status after a few seconds.
class LastWords : NonCopyable {
public:
    explicit LastWords(int status);
    ~LastWords();

private:
    SignalHandler m_handler;
};

/// Work in other processes, for a user who waits. Prints that Ctrl-C has arrived, and which command a signal ended.
class UserWork : public ProcessWorkInterface {
public:
    void stopAsked(std::size_t index, const ProcessBox& box) override;
    void killed(std::size_t index, const ProcessBox& box, int signal) override;

protected:
    /// Returns true if Ctrl-C ended the process before it could stop by itself.
    bool wasInterrupted(const ProcessOutcome& outcome) const;

private:
    bool m_isStopAsked = false;
};

}  // namespace vexa::runner
