#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "trace/TracedRun.h"

namespace vexa::runner {

/// What a command did, or the loading or unloading of an add-on, as lines that can be compared.
struct CommandLines {
    std::string name;                ///< `ID text`, `load FILE` or `unload ID`; kOutsideOfCommands
    std::string place;               ///< `FILE:LINE` of the macro; may be empty
    std::vector<std::string> lines;  ///< its host calls, then findings, then `=> ` and how it ended
};

inline constexpr char kOutsideOfCommands[] = "(between commands)";

/// The calls of a run, without what differs between equal runs: no times and no folders. In each command, the calls of
/// the host's thread come first, and then those of each other thread, marked `(thread 2)` and so on. Their order
/// depends on what the threads did, not on their numbers in the trace. Handles have new numbers in each command:
/// `string#1`.
struct CallLines {
    std::vector<CommandLines> commands;
    std::string outcome;  ///< the exit status and its meaning; empty if the trace ends before
};

/// Reads a trace of a TextTrace from its text.
/// \param name the file in messages
/// \throws TraceError
CallLines callLinesIn(const std::string& text, const std::string& name);

/// Returns the lines of a trace of an EventTrace.
CallLines callLinesOf(const TracedRun& run);

/// Returns the lines as a text: each command, and its lines indented below it.
std::string textOf(const CallLines& lines);

/// Returns \p line without the numbers of its handles.
std::string withoutHandleNumbers(const std::string& line);

}  // namespace vexa::runner
