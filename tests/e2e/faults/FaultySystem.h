#pragma once

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "RunProgram.h"

namespace vexa::e2e {

/// The calls of the system that can fail. Close stands only for files that were opened for writing.
enum class Call_e { Read, Write, Open, Close, Start, Map, Rename };

/// The call that fails: the \p number-th call of its kind, from 1 on, in the \p process-th process of the program, from
/// 0 on. Calls of other programs that the program starts do not count.
struct FailingCall {
    int process;
    Call_e call;
    int number;
};

/// A run of a program, in which at most one call failed.
struct FaultyRun {
    ProgramResult result;
    std::map<std::pair<int, Call_e>, int> calls;  ///< how many calls of each kind each process made
    std::string failed;                           ///< the call that failed: "open of /tmp/a"; empty if none did
    bool isMessageLost = false;                   ///< the failed call was a write to the standard error output
    bool hasHung = false;                         ///< the program did not end within the time, and was killed
    bool hasLeftProcesses = false;                ///< processes of the program outlived it, and were killed
};

/// Runs \p program, and lets one call of the system fail. The kernel reports each call to this process, which decides;
/// so calls inside the C library and the loader fail, too. Counting starts when the main function of the program asks
/// for its standard streams, because a program that the loader cannot start can report nothing. \throws
/// std::system_error if the kernel does not support this (before Linux 5.19), or forbids it.
FaultyRun runFaulty(const Program& program, const std::optional<FailingCall>& failing, std::chrono::seconds patience);

/// Returns the text that users see for the error of \p call: "Input/output error".
std::string reasonOf(Call_e call);

}  // namespace vexa::e2e
