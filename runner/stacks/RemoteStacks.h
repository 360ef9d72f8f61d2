#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <vector>

#include "stacks/Frame.h"

namespace vexa::runner {

/// The stack of a thread of another process.
struct ThreadStack {
    pid_t thread = 0;
    bool isFirst = false;     ///< whether it is the thread that the process started with
    Stack frames;             ///< empty if the stack cannot be read
    std::size_t leftOut = 0;  ///< how many more frames there are on the outer side
    bool isCounted = true;    ///< false if there are more than leftOut

    /// \name The frames of add-ons
    /// @{
    std::size_t ownBegin = 0;  ///< the index of the innermost one that is no inlined function of a system header
    std::size_t ownEnd = 0;    ///< the index after the outermost one; 0 if there is none
    bool hasOwn() const { return ownEnd != 0; }
    /// @}
};

/// Returns true if a path is that of an add-on, or of a library that only add-ons use.
using IsOfAddOn = std::function<bool(const std::string& object)>;

/// Returns a function that knows the program, the libraries of the host and those of the system by this: this process
/// has loaded them. Add-ons are loaded only in other processes.
IsOfAddOn isNotLoadedHere();

/// Reads the stacks of threads that this thread traces and that are stopped. A helper process does the work, so an
/// object with broken debug information cannot harm this process. The time is limited. Names and lines that are not
/// known in time are left out.
/// \return a stack for each thread. Threads that run code of an add-on come first, and among them the first thread of
///         the process.
std::vector<ThreadStack> stacksOf(pid_t process, const std::vector<pid_t>& threads, const IsOfAddOn& isOfAddOn);

}  // namespace vexa::runner
