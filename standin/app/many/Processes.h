#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "MemoryFile.h"

namespace vexa::runner {

/// What a process was given to write to; it reads nothing.
struct ProcessFiles {
    MemoryFile out;    ///< its standard output
    MemoryFile err;    ///< its standard error output
    MemoryFile notes;  ///< whatever it has to tell besides
};

/// How a process has ended, and what it wrote.
struct ProcessOutcome {
    int status = 0;      ///< its exit status; 128 and the number of the signal if one ended it, as shells have it
    int signal = 0;      ///< that number, or 0
    double seconds = 0;  ///< how long it took
    std::string out;
    std::string err;
    std::string notes;
};

/// Work that is to be done in processes of their own.
struct ProcessWork {
    /// Does the work number \p index, in the process for it.
    /// \return the exit status
    std::function<int(std::size_t index, ProcessFiles& files)> run;
    /// Called when a process has ended, in the order of the works.
    std::function<void(std::size_t index, const ProcessOutcome& outcome)> end;
};

/// Does \p count works, \p jobs at a time, each in a process of its own, in a group of its own. SIGINT is passed on to
/// those that run, and no other is begun. None outlives this process.
///
/// To be called while there is one thread.
/// \return how many ended; all, unless SIGINT came.
/// \throws std::system_error when there cannot be another process.
std::size_t runInProcesses(std::size_t count, std::size_t jobs, const ProcessWork& work);

}  // namespace vexa::runner
