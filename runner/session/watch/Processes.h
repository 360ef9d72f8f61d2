#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "session/watch/Drain.h"
#include "session/watch/Notes.h"
#include "session/watch/ProcessBox.h"
#include "stacks/StackReport.h"
#include "system/processes/AwaitedSignals.h"

namespace vexa::runner {

/// How a process has ended.
enum class End_e {
    Left,     ///< it reported a status, and ended with it
    Died,     ///< an add-on or a signal ended it
    TimedOut  ///< it was killed because it exceeded its time limit
};

/// The end of a process, and what it printed.
struct ProcessOutcome {
    End_e end = End_e::Died;
    int status = 0;             ///< the status that it reported, if it did
    int waitStatus = 0;         ///< as from waitpid()
    bool areNotesWhole = true;  ///< whether all of its notes arrived
    double seconds = 0;         ///< how long it took
    KeptText out;               ///< what it printed, if that was caught
    KeptText err;
    StackReport stacks;  ///< if it was ended by a signal of its own, or exceeded its time limit
};

/// Work that is done in other processes.
class ProcessWorkInterface : NonCopyable {
public:
    virtual ~ProcessWorkInterface() = default;

    /// Does the work number \p index. Called in the process for this work.
    /// \return the status to report.
    virtual int run(std::size_t index, ProcessBox& box, NotesInterface& notes) = 0;
    /// Returns the receiver of the notes of the process \p index; null for none. It must live until end().
    /// Called before the process starts.
    /// \param takePrinted returns what the process has printed on its standard output since the last call
    virtual NotesInterface* notesOf(std::size_t index, std::function<KeptText()> takePrinted) = 0;
    /// Called when the process \p index has ended, in the order of the numbers.
    virtual void end(std::size_t index, const ProcessBox& box, const ProcessOutcome& outcome) = 0;
    /// Called when the user asks the process \p index to stop for the first time.
    virtual void stopAsked(std::size_t index, const ProcessBox& box) = 0;
    /// Called when the process \p index was killed because \p signal came.
    virtual void killed(std::size_t index, const ProcessBox& box, int signal) = 0;
};

/// The destination of the output of the processes.
enum class Printed_e {
    Inherited,  ///< to the outputs of this process; the processes also read its input, unless that is a terminal
    Caught,     ///< to ProcessOutcome, each output by itself
    CaughtAsOne
};

/// How processes are run.
struct ProcessSetting {
    std::size_t jobs = 1;  ///< how many at a time
    Printed_e printed = Printed_e::Caught;
    bool readsNothing = false;                 ///< whether their input is empty, with Printed_e::Inherited
    std::size_t kept = std::size_t{16} << 20;  ///< how many bytes of each output are kept
    bool keepsEnd = false;                     ///< whether the last bytes are kept, instead of the first
    bool isTimed = false;                      ///< whether they may have a time limit
    std::chrono::milliseconds grace{0};        ///< how much longer than their limit they may take
    std::chrono::milliseconds timeToLeave{0};  ///< the limit from the report to the end; 0 for none
    /// Sets the limit of work that watches its own time limit. A second after that limit the process is killed.
    void limitTime(const std::optional<std::chrono::duration<double>>& limit) {
        isTimed = limit.has_value();
        grace = std::chrono::seconds(1);
        if (limit) timeToLeave = std::chrono::ceil<std::chrono::milliseconds>(*limit);
    }
    /// Whether the processes end without exit handlers. A process in which an add-on has left a thread always does.
    bool leavesAtOnce = false;
    bool readsStacks = true;        ///< whether the stacks of a crash or a hang are read
    bool showsWholeStacks = false;  ///< whether those stacks are shown whole
};

/// Does \p count pieces of work, each in its own process, and watches these processes. The status that a process
/// reports counts only if the process exits with it. SIGINT is passed on to the running processes, and no more are
/// started. A second SIGINT, or another signal that ends programs, kills them. Processes that they leave behind are
/// killed, too.
///
/// Call it while this process has one thread.
/// \return how many processes have ended: all of them, unless SIGINT came.
/// \throws std::system_error if a process cannot be started, or if what it prints or reports cannot be read; then all
/// are
///         killed.
/// \throws EndedBySignal if they were killed.
std::size_t runInProcesses(const AwaitedSignals& signals, std::size_t count, const ProcessSetting& setting,
                           ProcessWorkInterface& work);

}  // namespace vexa::runner
