#pragma once

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "trace/TracedRun.h"
#include "vexastandin/Observer.h"

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

class RunLines;

/// An observer that collects the lines of a run. Threads: as an observer.
class CallRecorder : public standin::ObserverInterface {
public:
    CallRecorder();
    ~CallRecorder() override;

    void entryBegan(const standin::EntryEvent& entry) override;
    void entryEnded(const standin::EntryEvent& entry) override;
    void callBegan(const standin::CallEvent&) override {}
    void callEnded(const standin::CallEvent& call) override;
    void findingMade(const standin::Finding& finding) override;
    void statusChanged(const standin::StatusLine&) override {}

    /// Returns the lines so far, without an outcome. Call it once, after all add-ons are unloaded.
    CallLines take();

private:
    std::mutex m_guard;
    std::unique_ptr<RunLines> m_lines;
};

/// Returns the lines as a text: each command, and its lines indented below it.
std::string textOf(const CallLines& lines);

/// Returns \p line without the numbers of its handles.
std::string withoutHandleNumbers(const std::string& line);

}  // namespace vexa::runner
