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
#include "system/processes/AwaitedSignals.h"

namespace vexa::runner {

/// How a process has ended.
enum class End_e {
    Left,     ///< it reported a status, and ended with it
    Died,     ///< an add-on ended it, or a signal
    TimedOut  ///< it was killed: it took longer than it may
};

/// What came of a process.
struct ProcessOutcome {
    End_e end = End_e::Died;
    int status = 0;             ///< what it reported; meaningful when it has
    int waitStatus = 0;         ///< as from waitpid()
    bool areNotesWhole = true;  ///< whether all that it told arrived
    double seconds = 0;         ///< how long it took
    KeptText out;               ///< what it printed, where that was caught
    KeptText err;
};

/// Work that is to be done in processes of their own.
class ProcessWorkInterface {
public:
    ProcessWorkInterface() = default;
    ProcessWorkInterface(const ProcessWorkInterface&) = delete;
    ProcessWorkInterface& operator=(const ProcessWorkInterface&) = delete;
    virtual ~ProcessWorkInterface() = default;

    /// Does the work number \p index, in the process for it.
    /// \return the status to report.
    virtual int run(std::size_t index, ProcessBox& box, NotesInterface& notes) = 0;
    /// Returns who gets the notes of the process \p index, until end(); null for nobody. Called before the process
    /// starts. \param takePrinted returns what the process has printed on its standard output since the last call
    virtual NotesInterface* notesOf(std::size_t index, std::function<KeptText()> takePrinted) = 0;
    /// Called when the process \p index has ended, in the order of the numbers.
    virtual void end(std::size_t index, const ProcessBox& box, const ProcessOutcome& outcome) = 0;
    /// Called when the user asks the process \p index to stop, for the first time.
    virtual void stopAsked(std::size_t index, const ProcessBox& box) = 0;
    /// Called when the process \p index was killed because \p signal came.
    virtual void killed(std::size_t index, const ProcessBox& box, int signal) = 0;
};

/// Where what the processes print goes.
enum class Printed_e {
    Inherited,  ///< where this process prints; they read what it would read, unless that is a terminal
    Caught,     ///< both outputs apart
    CaughtAsOne
};

/// How processes are run.
struct ProcessSetting {
    std::size_t jobs = 1;  ///< how many at a time
    Printed_e printed = Printed_e::Caught;
    bool readsNothing = false;  ///< whether there is nothing to read where they read what this process would
    std::size_t kept = std::size_t{16} << 20;  ///< how many bytes of each output are kept
    bool keepsEnd = false;                     ///< whether it is the end that is kept, and not the start
    bool isTimed = false;                      ///< whether they may have a time limit
    std::chrono::milliseconds grace{0};        ///< how much longer than their limit they may take
    std::chrono::milliseconds timeToLeave{0};  ///< the limit from the report to the end; 0 for none
    /// Sets the limit of work that looks at its own time limit: a second later the process is killed from outside.
    void limitTime(const std::optional<std::chrono::duration<double>>& limit) {
        isTimed = limit.has_value();
        grace = std::chrono::seconds(1);
        if (limit) timeToLeave = std::chrono::ceil<std::chrono::milliseconds>(*limit);
    }
    bool leavesAtOnce = false;  ///< whether what runs at the end of a program is left out
};

/// Does \p count works, each in a process of its own that is watched from here. What a process says of itself counts
/// only when it ends as it said. SIGINT goes on to the processes that run, and no other is started; the second SIGINT,
/// or another signal that ends programs, kills them. What processes leave behind is killed, too.
///
/// To be called while there is one thread.
/// \return how many have ended; all, unless SIGINT came.
/// \throws std::system_error when there cannot be another process.
/// \throws EndedBySignal when they were killed.
std::size_t runInProcesses(const AwaitedSignals& signals, std::size_t count, const ProcessSetting& setting,
                           ProcessWorkInterface& work);

}  // namespace vexa::runner
