#pragma once

#include <stdexcept>
#include <string>

#include "trace/TracedRun.h"

namespace vexa::runner {

/// A file cannot be read as a trace. The message is one line: the file, the line if there is one, and the reason.
class TraceError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a trace of an EventTrace. The trace may be incomplete, if the run was killed.
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
