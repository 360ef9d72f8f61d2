#pragma once

#include <stdexcept>
#include <string>

#include "system/files/LiveLines.h"
#include "trace/TraceVisitor.h"
#include "trace/TracedRun.h"

namespace vexa::runner {

/// A file cannot be read as a trace. The message is one line: the file, the line if there is one, and the reason.
class TraceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// An input that may be the trace of an EventTrace. The trace may be incomplete, if the run was killed.
///
///     TraceInput input("sweep.trace");
///     const TracedRun run = input.run();
///
/// Errors: TraceError from construction and from each function.
class TraceInput {
public:
    /// \param file the file; `-` is the standard input
    explicit TraceInput(const std::string& file);
    /// Returns the input with the text of a trace.
    /// \param name the file in messages
    static TraceInput ofText(std::string text, std::string name);

    /// Returns the file in messages.
    const std::string& name() const { return m_name; }
    /// Returns the first byte, so that the caller can choose how to read the input; zero if the input is empty.
    char first();
    /// Reads the input as text.
    std::string text();
    /// Passes the events to \p visitor, and holds only those of open spans. If the function throws, the visitor may
    /// have got a part of the events.
    void visit(TraceVisitorInterface& visitor);
    /// Reads the trace into memory.
    TracedRun run();

private:
    TraceInput(LiveLines lines, std::string name);

    std::string m_name;
    LiveLines m_lines;
};

}  // namespace vexa::runner
