#pragma once

#include <csignal>
#include <string>
#include <string_view>
#include <vector>

#include "stacks/RemoteStacks.h"

namespace vexa::runner {

/// What another process read about a process that crashed or does not return.
struct StackReport {
    int signal = 0;                    ///< the signal that ended the process; 0 for none
    std::string fault;                 ///< the address that caused the signal, and why; may be empty
    std::vector<ThreadStack> threads;  ///< the thread that got the signal; after a hang all threads
    std::string problem;               ///< why there is no stack; empty if there is one
    bool isWhole = false;  ///< whether textOf() shows all frames of all threads, or only those up to the outermost one
                           ///< of an add-on

    bool isEmpty() const { return threads.empty() && problem.empty(); }
    /// Returns the innermost frame of an add-on in the first thread; null if there is none.
    const Frame* ownFrame() const;
};

/// Describes the cause of a signal: `address 0x10: nothing is mapped there`. Empty if the signal has no address.
std::string faultText(const siginfo_t& signal);

/// Returns the lines about \p report that follow a message, indented.
std::string textOf(const StackReport& report);

/// \name A report as text, to send it to another process
/// @{
std::string packed(const StackReport& report);
StackReport unpackedReport(std::string_view text);
/// @}

}  // namespace vexa::runner
