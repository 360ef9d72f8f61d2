#pragma once

#include <stdexcept>
#include <string>

#include "trace/TraceVisitor.h"
#include "trace/TracedRun.h"

namespace vexa::runner {

/// A file cannot be read as a trace. The message is one line: the file, the line if there is one, and the reason.
class TraceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Passes the events of a trace of an EventTrace to \p visitor, and holds only those of open spans. The trace may be
/// incomplete, if the run was killed.
/// \throws TraceError. The visitor may then have got a part of the events.
void visitTrace(const std::string& file, TraceVisitorInterface& visitor);

/// Does the same with the text of a trace.
/// \param name the file in messages
void visitTraceText(const std::string& text, const std::string& name, TraceVisitorInterface& visitor);

/// Reads a trace of an EventTrace into memory. The trace may be incomplete, if the run was killed.
/// \throws TraceError
TracedRun readTrace(const std::string& file);

/// Reads a trace from its text.
/// \param path the file in messages
/// \throws TraceError
TracedRun traceIn(const std::string& content, const std::string& path);

/// Reads a file for traceIn(); `-` is the standard input. Sets \p name to the file in messages.
/// \throws TraceError
std::string traceTextOf(const std::string& file, std::string& name);

}  // namespace vexa::runner
